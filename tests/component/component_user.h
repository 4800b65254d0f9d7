#pragma once

#include <string>

#include "torva35/base/Object.h"

/// What a plug-in of a host does with objects that the host has created by name: reports go to an error object of
/// its own, which sets `*released` at its end. Returns what it has seen.
extern "C" std::string* UseComponent(TORVA35::Object& engine, TORVA35::Object& test, bool* released);
