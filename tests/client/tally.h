/* A component that adds numbers up, as its library and its users see it, in C and in C++. */
#ifndef TESTS_CLIENT_TALLY_H
#define TESTS_CLIENT_TALLY_H

#include <qxcore.h>

/* {54414C59-0001-4E45-8001-020304050607} */
static const GUID kTallyClass = {0x54414C59, 1, 0x4E45, {0x80, 1, 2, 3, 4, 5, 6, 7}};

/* {54414C59-0002-4E45-8001-020304050607} */
static const GUID kTallyInterface = {0x54414C59, 2, 0x4E45, {0x80, 1, 2, 3, 4, 5, 6, 7}};

#ifdef __cplusplus

class ITally : public IQXUnknown {
  public:
    /* Adds a number. Returns the total. */
    virtual int32_t Add(int32_t number) = 0;

    /* Tells how many objects were made since the library was loaded. */
    virtual uint32_t Made() = 0;

    /* Tells what QXUtf8BomStr points to, as the library sees it. */
    virtual const char* Mark() = 0;

  protected:
    ~ITally() = default;
};

#else

typedef struct ITally ITally;
typedef struct ITallyTable {
    QXResult (*QueryInterface)(ITally* self, const GUID* interfaceID, void** result);
    uint32_t (*AddRef)(ITally* self);
    uint32_t (*Release)(ITally* self);
    int32_t (*Add)(ITally* self, int32_t number);
    uint32_t (*Made)(ITally* self);
    const char* (*Mark)(ITally* self);
} ITallyTable;
struct ITally {
    const ITallyTable* table;
};

#endif

#endif
