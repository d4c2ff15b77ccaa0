#pragma once

/// The setting `numReaderThreads`: threads of the service that opens files ahead of need. Read on the
/// first call and kept for the life of the process.
[[nodiscard]] int getNumThreads();

/// The setting `ReadPollDelay`: milliseconds after which a video read queue looks at its list even
/// unwoken; a negative one is a very long wait. Read on the first call and kept.
[[nodiscard]] int getReadPollDelay();

/// The setting `playfileCacheSizeMin`: how many files stay open when memory is wanted.
[[nodiscard]] int readCacheSizeMin();

/// The setting `max_audio_chans_in_shot`: how many channels of sound are looked at when a clip's material is
/// deleted. Read on each call.
[[nodiscard]] int readMaxAudioChannels();

/// The setting `playfileCacheSizeMax`: how many files may be open before another is opened.
[[nodiscard]] int readCacheSizeMax();
