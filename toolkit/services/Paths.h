#pragma once

#include "ole/Ox/OxString.h"

/// The folder of a path with its closing separator; empty if the path has none.
[[nodiscard]] LightweightString<wchar_t> getPath(LightweightString<wchar_t> const& path);
/// The extension of the last component, without its full stop unless `withDot`; empty if none.
[[nodiscard]] LightweightString<wchar_t> getExtension(LightweightString<wchar_t> const& path,
                                                      bool withDot = false);
/// The path without the extension of its last component and the full stop before it.
[[nodiscard]] LightweightString<wchar_t> stripExtension(LightweightString<wchar_t> const& path);
/// The last component.
[[nodiscard]] LightweightString<wchar_t> stripPath(LightweightString<wchar_t> const& path);
/// The last component without its extension.
[[nodiscard]] LightweightString<wchar_t> stripPathAndExt(LightweightString<wchar_t> const& path);
/// The path with the separators of another system turned into those of this one.
[[nodiscard]] LightweightString<wchar_t> fixForeignOSFileName(LightweightString<wchar_t> const& path);
/// The two with one separator between them; with an empty `name` the folder with its closing separator, with
/// an empty folder `name` alone.
[[nodiscard]] LightweightString<wchar_t> joinPaths(LightweightString<wchar_t> const& folder,
                                                   LightweightString<wchar_t> const& name);

/// Forwards to the file manager in force.
/// Bytes; 0 for a missing file.
[[nodiscard]] std::uint64_t fileSize(LightweightString<wchar_t> const& path);
[[nodiscard]] bool fileExists(LightweightString<wchar_t> const& path);
