#pragma once

#include <cstdint>

#define PROC_ALL_PIDS 1

// Flavours of proc_pidinfo and proc_pidfdinfo.
#define PROC_PIDLISTFDS 1
#define PROC_PIDTBSDINFO 3
#define PROC_PIDREGIONPATHINFO 8
#define PROC_PIDVNODEPATHINFO 9
#define PROC_PIDFDVNODEPATHINFO 2

#define PROX_FDTYPE_VNODE 1

struct proc_fdinfo {
    std::int32_t proc_fd;
    std::uint32_t proc_fdtype;
};

struct proc_bsdinfo {
    std::uint32_t pbi_flags;
    std::uint32_t pbi_status;
    std::uint32_t pbi_xstatus;
    std::uint32_t pbi_pid;
    std::uint32_t pbi_ppid;
    std::uint32_t simulated_rest[25];
    std::uint64_t pbi_start_tvsec;
    std::uint64_t pbi_start_tvusec;
};
static_assert(sizeof(proc_bsdinfo) == 136);

struct vnode_info {
    std::uint8_t simulated_rest[152];
};

struct vnode_info_path {
    struct vnode_info vip_vi;
    char vip_path[1024];
};

struct proc_vnodepathinfo {
    struct vnode_info_path pvi_cdir;
    struct vnode_info_path pvi_rdir;
};
static_assert(sizeof(proc_vnodepathinfo) == 2352);

struct proc_fileinfo {
    std::uint8_t simulated_rest[24];
};

struct vnode_fdinfowithpath {
    struct proc_fileinfo pfi;
    struct vnode_info_path pvip;
};
static_assert(sizeof(vnode_fdinfowithpath) == 1200);

struct proc_regioninfo {
    std::uint8_t simulated_rest[80];
    std::uint64_t pri_address;
    std::uint64_t pri_size;
};

struct proc_regionwithpathinfo {
    struct proc_regioninfo prp_prinfo;
    struct vnode_info_path prp_vip;
};
static_assert(sizeof(proc_regionwithpathinfo) == 1272);
