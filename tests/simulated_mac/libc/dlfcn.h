#pragma once

// Darwin's dynamic loader: its values differ from those of this machine's, and it sees the
// simulated Mac's libraries only.

extern "C" {

#define RTLD_LAZY 0x1
#define RTLD_GLOBAL 0x8
#define RTLD_DEFAULT ((void *)-2)

void *dlopen(const char *path, int mode) __asm__("simulated_mac_dlopen");
void *dlsym(void *handle, const char *symbol) __asm__("simulated_mac_dlsym");

} // extern "C"
