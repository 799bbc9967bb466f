// A key of a configuration store, seen the same way whichever store holds it.
#ifndef QX_CONFIG_REG_KEY_H
#define QX_CONFIG_REG_KEY_H

#include <qxcore/base.h>

#include <string>

#include "core/ref_counted.h"
#include "platform/types.h"

namespace qx::core {

// Walks its children and values once, in the order of its store. Belongs to one thread.
class CRegKey : public CQXCoreRefCounted {
  public:
    CRegKey(u32 root, std::u16string path);

    // Copies all values of this key and of those below it into another store, under the same root
    // and path: children first. What cannot be read, or is not accepted there, is left out and
    // nobody is told. Throws what HasMoreKeys throws; what was copied by then stays.
    void CopyTo(CRegKey& destination);

    // A name that is too long, 256 units or more, and any failure of a step end the walk. Throws if
    // the children cannot be listed.
    bool HasMoreKeys();
    // The next child, of the same store. Throws QX_E_EOF behind the last.
    CQXRefPtr<CRegKey> NextKey();

    // The same for values, but for ones that cannot be listed: there are none then.
    bool HasMoreValues();

  protected:
    // The operations of a store. An enumeration that was opened is closed by the destructor.
    virtual QXResult OpenKeyEnum() = 0;
    virtual QXResult EnumNextKey(wchar* name, u32* length) = 0;
    virtual QXResult OpenValueEnum() = 0;
    virtual QXResult EnumNextValue(wchar* name, u32* length) = 0;
    virtual CQXRefPtr<CRegKey> CreateKey(u32 root, const std::u16string& path) const = 0;
    virtual QXResult GetValue(const std::u16string& name, u32* type, void* data,
                              u32* length) const = 0;
    // For any key of the store, whichever this one is. Text is terminated.
    virtual QXResult SetValue(u32 root, const std::u16string& path, const std::u16string& name,
                              u32 type, const void* data, u32 length) = 0;

    const u32 m_root;
    const std::u16string m_path;  // below the root
    QXHandle m_keyEnum = QX_INVALID_HANDLE;
    QXHandle m_valueEnum = QX_INVALID_HANDLE;

  private:
    void CopyValue(const std::u16string& name, CRegKey& destination) const;

    bool m_hasPendingKey = false;
    std::u16string m_pendingKey;
    bool m_hasPendingValue = false;
    std::u16string m_pendingValue;
};

// A key of the store of a kind, which need not be there. Throws QX_E_BADKEY for an unknown kind.
CQXRefPtr<CRegKey> CreateRegKey(u32 root, const std::u16string& path, u32 kind);

}  // namespace qx::core

#endif
