// The contents of a new sample Mac.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "BrellCore/Preferences/PlistFileStore.h"
#include "BrellCore/Support/FileLock.h"

namespace brell::SampleContents {

// To be held while something is added. Raises std::runtime_error when another process is at it for long.
FileLock lock(const std::filesystem::path& root);
// True when a program has held that lock in this folder, so that it is a sample Mac or is becoming one.
bool hasBegun(const std::filesystem::path& root);

// All of these leave files alone that are there already. root is the Mac's folder without links.
void addPreferences(PlistFileStore& store);
void addJobs(const std::filesystem::path& root, const std::filesystem::path& home);  // then launchd's state
void addTaskDump(const std::filesystem::path& root);
void addVolumes(const std::filesystem::path& root);

std::filesystem::path taskDumpFile(const std::filesystem::path& root);

// The text that `mdutil -s` prints about a volume; nothing when there is no such volume.
std::optional<std::string> mdutilAnswer(std::string_view volume);

}  // namespace brell::SampleContents
