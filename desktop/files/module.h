// The program's own modules, which are loaded when they are first needed.
#pragma once

#include <filesystem>
#include <string>

namespace desktop {

/// The file of the running program, without links; empty when the system does not tell.
std::filesystem::path programFile();

/// Where the program's resources lie.
std::filesystem::path resourceFolder();

/// Where a file of the program's own modules lies.
std::filesystem::path moduleFile(const std::string& name);

/// A function that a module exports, to be cast to what it is; null, after a line on the standard
/// error, when the module cannot be loaded. A module stays loaded. Any thread.
void* functionOfModule(const char* module, const char* function);

}  // namespace desktop
