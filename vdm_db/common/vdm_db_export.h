// Symbol visibility of the module's exported classes and functions.
#pragma once

// The module is compiled with hidden visibility; what other modules use is marked with this.
#define VDM_DB_EXPORT __attribute__((visibility("default")))
