#pragma once

// The part of Mach's host interface that this program uses, with the layouts of 64-bit Macs.

#include <cstdint>

extern "C" {

typedef int kern_return_t;
typedef unsigned int natural_t;
typedef int integer_t;
typedef int boolean_t;
typedef unsigned int mach_port_t;
typedef mach_port_t host_t;
typedef mach_port_t vm_map_t;
typedef std::uintptr_t vm_size_t;
typedef std::uintptr_t vm_address_t;
typedef natural_t mach_msg_type_number_t;
typedef integer_t *host_info64_t;
typedef integer_t *processor_info_array_t;
typedef integer_t host_flavor_t;
typedef int processor_flavor_t;

#define KERN_SUCCESS 0
#define KERN_INVALID_ARGUMENT 4
#define KERN_FAILURE 5
#define KERN_RESOURCE_SHORTAGE 6
#define KERN_INVALID_HOST 22
#define MIG_ARRAY_TOO_LARGE (-307)

#define HOST_VM_INFO64 4
#define PROCESSOR_CPU_LOAD_INFO 2

#define CPU_STATE_USER 0
#define CPU_STATE_SYSTEM 1
#define CPU_STATE_IDLE 2
#define CPU_STATE_NICE 3
#define CPU_STATE_MAX 4

struct vm_statistics64 {
    natural_t free_count;
    natural_t active_count;
    natural_t inactive_count;
    natural_t wire_count;
    std::uint64_t zero_fill_count;
    std::uint64_t reactivations;
    std::uint64_t pageins;
    std::uint64_t pageouts;
    std::uint64_t faults;
    std::uint64_t cow_faults;
    std::uint64_t lookups;
    std::uint64_t hits;
    std::uint64_t purges;
    natural_t purgeable_count;
    natural_t speculative_count;
    std::uint64_t decompressions;
    std::uint64_t compressions;
    std::uint64_t swapins;
    std::uint64_t swapouts;
    natural_t compressor_page_count;
    natural_t throttled_count;
    natural_t external_page_count;
    natural_t internal_page_count;
    std::uint64_t total_uncompressed_pages_in_compressor;
} __attribute__((aligned(8)));

struct processor_cpu_load_info {
    unsigned int cpu_ticks[CPU_STATE_MAX];
};

extern mach_port_t mach_task_self_;
#define mach_task_self() mach_task_self_

mach_port_t mach_host_self(void);
kern_return_t host_page_size(host_t host, vm_size_t *size);
kern_return_t host_statistics64(host_t host, host_flavor_t flavor, host_info64_t info,
                                mach_msg_type_number_t *count);
kern_return_t host_processor_info(host_t host, processor_flavor_t flavor, natural_t *processors,
                                  processor_info_array_t *info, mach_msg_type_number_t *count);
kern_return_t vm_deallocate(vm_map_t task, vm_address_t address, vm_size_t size);

} // extern "C"
