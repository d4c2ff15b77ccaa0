#pragma once

#include "transfer/MaterialMove.h"

class MediaDrive;

/// Relocates the files of one clip, and for a move corrects the catalogue.
///
/// What is at the target already is left as it is, and so is its source. A link to a file in a drive's own video or
/// sound folder is written anew for the destination, unless the file is on the destination: then it is copied. The
/// companions of a clip's own file go with it: whatever lies beside it under the same stem and is no media itself.
///
/// Threads  The caller's.
/// Errors   Of each file a line in the log. Of companions nothing is said.
void copyMaterialFile(LogicalMediaFile const& file, DriveId const& destination, MaterialMove::eType type,
                      LoggerHandle handle);

/// True for a link to a file in a drive's own video or sound folder.
[[nodiscard]] bool isLinkedLocal(MediaFileInfo const& info);
/// The drive in whose own video or sound folder a file lies, not below it; empty if it is no such folder. The
/// comparison is exact.
[[nodiscard]] Ox::Ptr<MediaDrive> findMediaLocationFromFile(LightweightString<wchar_t> const& file);

/// Told by the file manager how far a copy has come.
///
/// @param context  whose first virtual operation is `reportProgress`; null: nobody is told
/// @return         always 1: a file is finished once it is begun
int progress(void* context, unsigned long copied, unsigned long total);

/// What kind of material a name stands for.
enum eMaterialType : std::uint32_t { visionMaterial = 1, soundMaterial = 2, otherMaterial = 128 };
[[nodiscard]] eMaterialType getMaterialTypeFromName(LightweightString<wchar_t> const& name);

/// Bytes of a file whose name may begin with a drive ("X:name"); 0 if it isn't there.
[[nodiscard]] std::uint64_t ToolsGetfilesize(char const* name);
/// The last component of a path of either kind of separator.
[[nodiscard]] LightweightString<wchar_t> stripPath2(LightweightString<wchar_t> const& path);
