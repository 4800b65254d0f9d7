#pragma once

/// Marks what the shared library exports; everything else stays hidden.
#define TORVA35_API __attribute__((visibility("default")))
