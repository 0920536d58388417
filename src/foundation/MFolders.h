// What the program asks the system about files and folders. Paths are MString; '/' and '\' are both understood,
// and the program composes with PathSeparator. None of these reports anything beyond its result.
//
// A look-up that finds nothing under the exact name goes through the folder's entries without regard to case,
// part by part, since the program's own names rely on a file system that ignores case. Writing and deleting
// find the same file; a new one gets the name as given, in the folder that reading would find.
#pragma once

#include "foundation/MString.h"

#include <cstdint>
#include <filesystem>
#include <optional>

inline constexpr char16_t PathSeparator = static_cast<char16_t>(std::filesystem::path::preferred_separator);

// folder, separator, name; also after an empty folder.
MString JoinPath(const MString& folder, const MString& name);

// The parts of a path on disk. Only '/' and '\\' divide it: ':' and '?' are letters of names here, unlike in
// addresses, whose parts MString tells.
MString FolderOf(const MString& path); // up to the last separator; all of it without one
MString FileNameOf(const MString& path);
MString ExtensionOf(const MString& path); // of the name, upper case, without its dot; empty if it has none
MString WithExtension(const MString& path, const MString& extension);

// The path in the system's own form, with its own separators.
std::filesystem::path ToSystemPath(const MString& path);
MString FromSystemPath(const std::filesystem::path& path);
// From the root or drive on, with no folder "."; ".." stays, since only the system knows where it leads. An
// empty path stays empty.
MString FullPath(const MString& path);

// The existing file or folder that `path` means, with case ignored where the exact name is not there.
std::optional<std::filesystem::path> FindExisting(const MString& path);

// Where a file of this path is written: the existing one that it means, else its name in the existing folder
// that is meant, else just as it stands.
std::filesystem::path PlaceToWrite(const MString& path);

bool FileExists(const MString& path);   // false for a folder and for an empty path
bool FolderExists(const MString& path); // one trailing separator doesn't matter
// Whether nobody may write the file, as its owner has set it. Such a file is neither overwritten nor deleted,
// although the system itself would let it be deleted.
bool IsReadOnly(const MString& path);
// Creates a folder with all its parents; true if it is there at the end. False for an empty path. On failure
// the parents made so far stay. A bare root or drive ("/", "C:", "C:/") is true without a look. Each new folder
// is told on the debug channel.
bool CreateFolder(const MString& path);
// True if the file was deleted or `path` is empty. A read-only one stays, unless `clearReadOnly` lets its owner
// write it first. `toRecycleBin` moves it to the user's bin instead of deleting.
bool DeleteFile(const MString& path, bool clearReadOnly, bool toRecycleBin);
// "1023 bytes", "1 KB", "1 MB", "1 GB": the largest unit of which there is at least one, truncated.
MString SizeText(std::int64_t bytes);

// The folder of the running program, without a trailing separator; empty if the system doesn't tell.
MString GetProgramFolder();
// The user's folder for program data (documents), then the given names, created if missing. Empty on failure.
MString GetAppDataFolder(const MString& first, const MString& second);
MString GetDocumentsFolder(const MString& name);
