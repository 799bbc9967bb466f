// A key of the ini file.
#ifndef QX_CONFIG_INI_REG_KEY_H
#define QX_CONFIG_INI_REG_KEY_H

#include "config/reg_key.h"

namespace qx::core {

class CIniRegKey final : public CRegKey {
  public:
    using CRegKey::CRegKey;
    ~CIniRegKey() override;

  private:
    QXResult OpenKeyEnum() override;
    QXResult EnumNextKey(wchar* name, u32* length) override;
    QXResult OpenValueEnum() override;
    QXResult EnumNextValue(wchar* name, u32* length) override;
    CQXRefPtr<CRegKey> CreateKey(u32 root, const std::u16string& path) const override;
    QXResult GetValue(const std::u16string& name, u32* type, void* data,
                      u32* length) const override;
    QXResult SetValue(u32 root, const std::u16string& path, const std::u16string& name, u32 type,
                      const void* data, u32 length) override;
};

}  // namespace qx::core

#endif
