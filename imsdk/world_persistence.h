#pragma once
// The world as one JSON file ("imsdk-world", version 1), so that a demo
// world survives restarts. Writes are atomic (temporary file, then rename);
// a file that does not read completely is refused as a whole.
#include <string>

#include "imsdk/world_model.h"

namespace imsdk {

// Returns "" or an error text.
std::string SaveWorld(const WorldData& world, const std::string& path);
// Fills `out` only when the whole file reads; returns "" or an error text.
std::string LoadWorld(const std::string& path, WorldData* out);

}  // namespace imsdk
