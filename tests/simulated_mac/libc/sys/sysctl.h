#pragma once

// The part of Darwin's system controls that this program uses.

#include <mach/mach.h>

#include <cstddef>
#include <sys/types.h>

extern "C" {

#define CTL_KERN 1
#define KERN_PROCARGS2 49

struct xsw_usage {
    std::uint64_t xsu_total;
    std::uint64_t xsu_avail;
    std::uint64_t xsu_used;
    std::uint32_t xsu_pagesize;
    boolean_t xsu_encrypted;
};

// Under names of their own for the linker: this machine's C library may have functions of these.
int sysctl(int *name, u_int nameLength, void *oldValue, std::size_t *oldLength, void *newValue,
           std::size_t newLength) __asm__("simulated_mac_sysctl");
int sysctlbyname(const char *name, void *oldValue, std::size_t *oldLength, void *newValue,
                 std::size_t newLength) __asm__("simulated_mac_sysctlbyname");

} // extern "C"
