// What the Apple sources rely on, held against Darwin's own headers: layouts and values that they
// share with the kernel.

#include <dlfcn.h>
#include <libproc.h>
#include <mach/mach.h>
#include <pthread/qos.h>
#include <sys/resource.h>
#include <sys/sysctl.h>

#include <cstddef>

static_assert(offsetof(vm_statistics64, free_count) == 0);
static_assert(offsetof(vm_statistics64, active_count) == 4);
static_assert(offsetof(vm_statistics64, inactive_count) == 8);
static_assert(offsetof(vm_statistics64, wire_count) == 12);
static_assert(offsetof(vm_statistics64, purgeable_count) == 88);
static_assert(offsetof(vm_statistics64, speculative_count) == 92);
static_assert(offsetof(vm_statistics64, compressor_page_count) == 128);
static_assert(offsetof(vm_statistics64, external_page_count) == 136);
static_assert(sizeof(vm_statistics64) >= 152 && alignof(vm_statistics64) == 8);
static_assert(sizeof(natural_t) == 4 && sizeof(integer_t) == 4);
static_assert(sizeof(vm_size_t) == 8 && sizeof(mach_port_t) == 4);
static_assert(HOST_VM_INFO64 == 4 && KERN_SUCCESS == 0);

static_assert(sizeof(processor_cpu_load_info) == 16);
static_assert(offsetof(processor_cpu_load_info, cpu_ticks) == 0);
static_assert(PROCESSOR_CPU_LOAD_INFO == 2 && CPU_STATE_MAX == 4);
static_assert(CPU_STATE_USER == 0 && CPU_STATE_SYSTEM == 1 && CPU_STATE_IDLE == 2
              && CPU_STATE_NICE == 3);

static_assert(sizeof(xsw_usage) == 32);
static_assert(offsetof(xsw_usage, xsu_total) == 0 && offsetof(xsw_usage, xsu_avail) == 8);
static_assert(offsetof(xsw_usage, xsu_used) == 16 && offsetof(xsw_usage, xsu_pagesize) == 24);
static_assert(CTL_KERN == 1 && KERN_PROCARGS2 == 49);

static_assert(sizeof(rusage_info_v4) == 296);
static_assert(offsetof(rusage_info_v4, ri_resident_size) == 64);
static_assert(offsetof(rusage_info_v4, ri_phys_footprint) == 72);
static_assert(RUSAGE_INFO_V4 == 4 && PROC_ALL_PIDS == 1);
static_assert(sizeof(pid_t) == 4);

static_assert(RTLD_LAZY == 1 && RTLD_GLOBAL == 8);
static_assert(QOS_CLASS_UTILITY == 0x11 && QOS_CLASS_DEFAULT == 0x15);

int main()
{
    return RTLD_DEFAULT == reinterpret_cast<void *>(-2) ? 0 : 1;
}
