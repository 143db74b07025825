#pragma once

#define PROC_ALL_PIDS 1
