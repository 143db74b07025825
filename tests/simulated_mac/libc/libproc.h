#pragma once

// The part of Darwin's process information library that this program uses.

#include <sys/proc_info.h>

#include <cstdint>
#include <sys/resource.h>

extern "C" {

#define RUSAGE_INFO_V4 4

typedef void *rusage_info_t;

struct rusage_info_v4 {
    std::uint8_t ri_uuid[16];
    std::uint64_t ri_user_time;
    std::uint64_t ri_system_time;
    std::uint64_t ri_pkg_idle_wkups;
    std::uint64_t ri_interrupt_wkups;
    std::uint64_t ri_pageins;
    std::uint64_t ri_wired_size;
    std::uint64_t ri_resident_size;
    std::uint64_t ri_phys_footprint;
    std::uint64_t simulated_rest[27];
};

int proc_listpids(std::uint32_t type, std::uint32_t typeInfo, void *buffer, int bufferSize);
int proc_pid_rusage(int pid, int flavor, rusage_info_t *buffer);
int proc_name(int pid, void *buffer, std::uint32_t bufferSize);
int proc_pidinfo(int pid, int flavor, std::uint64_t argument, void *buffer, int bufferSize);
int proc_pidfdinfo(int pid, int descriptor, int flavor, void *buffer, int bufferSize);

} // extern "C"
