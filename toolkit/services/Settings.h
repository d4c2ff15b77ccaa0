#pragma once

/// An integer setting: the environment's `PLAYFILE_<key>` if it is a whole number, else what the
/// settings file or `setConfigInt` says, else `defaultValue`; kept between `lowest` and `highest`.
///
/// The settings file holds lines of the form `key = number`; `#` begins a comment. It is named by the
/// environment's `PLAYFILE_SETTINGS`, else it is `playfile/settings` in the user's folder of
/// configurations.
///
/// Threads  Any. Whoever reads a setting once and keeps it doesn't see later changes.
[[nodiscard]] int config_int(char const* key, int defaultValue, int lowest, int highest);

/// Sets a setting for this process, as the settings file would.
void setConfigInt(char const* key, int value);
