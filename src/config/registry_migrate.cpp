#include <qxcore/registry.h>

#include "config/ini_registry.h"
#include "config/reg_key.h"
#include "core/entry_guard.h"
#include "platform/cancellation.h"

namespace {

// In this order.
constexpr u32 kRoots[] = {QX_HKEY_CLASSES_64, QX_HKEY_CLASSES, QX_HKEY_CONFIG_64, QX_HKEY_CONFIG,
                          QX_HKEY_USER};

// A native root to which nothing has been written yet may have no store behind it, which is no
// failure.
bool HasStore(u32 root, u32 kind) {
    if (kind != QX_REGSTORE_NATIVE) {
        return true;
    }
    QXHandle values;
    const QXResult result = QXRegistryOpenValueEnum(static_cast<i32>(root), u"", &values);
    if (result == QX_S_OK) {
        QXRegistryCloseEnum(values);
    }
    return result != QX_E_NOTFOUND;
}

void CopyRoots(u32 sourceKind, u32 destinationKind) {
    for (const u32 root : kRoots) {
        const auto source = qx::core::CreateRegKey(root, u"", sourceKind);
        const auto destination = qx::core::CreateRegKey(root, u"", destinationKind);
        if (HasStore(root, sourceKind)) {
            source->CopyTo(*destination.Get());
        }
    }
}

}  // namespace

QXResult QXRegistryMigrate(uint32_t sourceKind, [[maybe_unused]] uintptr_t reserved1,
                           uint32_t destinationKind, [[maybe_unused]] uintptr_t reserved2) {
    const platform::CancellationOff whole;
    IniRegistryInit();
    const QXResult result = RunGuarded([&] {
        CopyRoots(sourceKind, destinationKind);
        if (sourceKind == QX_REGSTORE_INI) {
            IniRegistryDeleteFile();
        }
        return QX_S_OK;
    });
    IniRegistryTerm();
    return result;
}
