// Symbol visibility of the runtime's exported classes and functions.
#pragma once

// Marks what a loaded module may use even when it is compiled with hidden visibility.
#define OD_API __attribute__((visibility("default")))
