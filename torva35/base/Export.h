#pragma once

/// Marks what the shared library exports; everything else stays hidden. The library's build says how, where it
/// takes something else.
#ifndef TORVA35_API
#define TORVA35_API __attribute__((visibility("default")))
#endif
