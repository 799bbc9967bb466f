// Makes operator new fail, in the test program and in every library that it uses.
#ifndef TESTS_SUPPORT_ALLOCATION_FAULT_H
#define TESTS_SUPPORT_ALLOCATION_FAULT_H

// From now on the calling thread's n-th operator new fails, once. 0 calls the fault off.
void FailAllocation(int n);

// True if the fault that was asked for has struck.
bool AllocationHasFailed();

// Runs the body with the first allocation failing, then with the second, and so on, until one run
// meets no fault. The body returns whether it succeeded, which the last run must. Returns the
// number of runs that met a fault.
template <typename Body>
int ForEachFailingAllocation(Body&& body) {
    for (int n = 1;; ++n) {
        FailAllocation(n);
        const bool succeeded = body();
        const bool struck = AllocationHasFailed();
        FailAllocation(0);
        if (!struck) {
            return succeeded ? n - 1 : -1;
        }
    }
}

#endif
