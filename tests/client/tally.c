/* A component library in C. */
#include "tally.h"

#if defined(_WIN32)
#define TALLY_EXPORT __declspec(dllexport)
#else
#define TALLY_EXPORT __attribute__((visibility("default")))
#endif

enum {
    kNoInterface = (QXResult)0x80004002,
    kNoAggregation = (QXResult)0x80040110,
    kClassNotAvailable = (QXResult)0x80040111
};

typedef struct Tally {
    ITally base;
    uint32_t references;
    int32_t total;
} Tally;

static QXResult TallyQueryInterface(ITally* self, const GUID* interfaceID, void** result) {
    const int known = QXComIsEqualGUID(interfaceID, &QX_IID_UNKNOWN) ||
                      QXComIsEqualGUID(interfaceID, &kTallyInterface);
    *result = known ? self : NULL;
    return known ? (self->table->AddRef(self), QX_S_OK) : (QXResult)kNoInterface;
}

static uint32_t TallyAddRef(ITally* self) {
    return QXAtomicIncrement(&((Tally*)self)->references);
}

static uint32_t TallyRelease(ITally* self) {
    const uint32_t left = QXAtomicDecrement(&((Tally*)self)->references);
    if (left == 0) {
        QXFree(self);
    }
    return left;
}

static int32_t TallyAdd(ITally* self, int32_t number) {
    return ((Tally*)self)->total += number;
}

static uint32_t s_made = 0;

static uint32_t TallyMade(ITally* self) {
    (void)self;
    return s_made;
}

static const char* TallyMark(ITally* self) {
    (void)self;
    return QXUtf8BomStr;
}

static const ITallyTable kTallyTable = {TallyQueryInterface, TallyAddRef, TallyRelease, TallyAdd,
                                        TallyMade,           TallyMark};

/* The one factory, which nobody owns. */

static QXResult FactoryQueryInterface(IQXClassFactory* self, const GUID* interfaceID,
                                      void** result) {
    const int known = QXComIsEqualGUID(interfaceID, &QX_IID_UNKNOWN) ||
                      QXComIsEqualGUID(interfaceID, &QX_IID_CLASS_FACTORY);
    *result = known ? self : NULL;
    return known ? QX_S_OK : (QXResult)kNoInterface;
}

static uint32_t FactoryReferences(IQXClassFactory* self) {
    (void)self;
    return 1;
}

static QXResult FactoryCreateInstance(IQXClassFactory* self, void* outer, const GUID* interfaceID,
                                      void** result) {
    void* block;
    (void)self;
    *result = NULL;
    if (outer != NULL) {
        return (QXResult)kNoAggregation;
    }
    QXResult outcome = QXCalloc(1, sizeof(Tally), &block);
    if (QX_SUCCEEDED(outcome)) {
        Tally* const tally = (Tally*)block;
        tally->base.table = &kTallyTable;
        tally->references = 1;
        ++s_made;
        outcome = TallyQueryInterface(&tally->base, interfaceID, result);
        TallyRelease(&tally->base);
    }
    return outcome;
}

static const IQXClassFactoryTable kFactoryTable = {FactoryQueryInterface, FactoryReferences,
                                                   FactoryReferences, FactoryCreateInstance};

static IQXClassFactory s_factory = {&kFactoryTable};

TALLY_EXPORT QXResult DllGetClassObject(const GUID* classID, const GUID* interfaceID,
                                        void** result) {
    *result = NULL;
    return QXComIsEqualGUID(classID, &kTallyClass)
               ? FactoryQueryInterface(&s_factory, interfaceID, result)
               : (QXResult)kClassNotAvailable;
}
