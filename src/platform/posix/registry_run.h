// How an operation on a store is run: under the store's lock, and again and again while other
// processes are in its way.
#ifndef QX_PLATFORM_POSIX_REGISTRY_RUN_H
#define QX_PLATFORM_POSIX_REGISTRY_RUN_H

#include <new>

#include "cancellation.h"
#include "platform/errors.h"
#include "registry_store.h"
#include "signals_off.h"

namespace platform {

// How long an operation waits for other processes, counted from its beginning.
class Patience {
  public:
    Patience() noexcept;

    // Waits a little. False once that has gone on for long enough.
    bool Wait() noexcept;

  private:
    i64 m_deadline;  // milliseconds
    u32 m_waits = 0;
};

// `failure` tells why there is no number.
template <typename Operation>
bool Attempt(RegistryStore& store, Operation& operation, u32& number,
             StoreFailure& failure) noexcept {
    try {
        number = operation(store);
        failure = {kErrorBusy, true};
        return store.CanBeBelieved();
    } catch (const StoreFailure& thrown) {
        failure = thrown;
        failure.m_transient = failure.m_transient || store.MayHaveMoved() || store.GiveUpReading();
    } catch (const std::bad_alloc&) {
        failure = {kErrorOutOfMemory, false};
    }
    return false;
}

// One attempt under the store's lock, and where others hold a read up one more without locks on the
// files. No handler runs meanwhile that might fork, or use the registry itself.
template <typename Operation>
bool TryOnStore(RegistryStore& store, Operation& operation, u32& number, StoreFailure& failure) {
    const SignalsOff noSignals;
    struct Holder {
        explicit Holder(RegistryStore& held) noexcept : m_store(held) { m_store.Enter(); }
        ~Holder() { m_store.Leave(); }
        RegistryStore& m_store;
    } const holder(store);
    return Attempt(store, operation, number, failure) ||
           (failure.m_transient && store.OpenWithoutLocks() &&
            Attempt(store, operation, number, failure));
}

// Runs an operation on a store and turns what it throws into its number. The operation is such that
// it can start over, also when it has succeeded. Nobody else has to wait while it waits.
template <typename Operation>
u32 RunOnStore(StoreNumber which, Operation&& operation) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff noCancellation;
    if (!sqlite::Bind()) {
        return kErrorModuleNotFound;
    }
    Patience patience;
    u32 number = kErrorSuccess;
    StoreFailure failure{};
    while (!TryOnStore(StoreOf(which), operation, number, failure)) {
        if (!failure.m_transient || !patience.Wait()) {
            return failure.m_number;
        }
    }
    return number;
}

}  // namespace platform

#endif
