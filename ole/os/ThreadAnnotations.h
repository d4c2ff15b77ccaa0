#pragma once

/// Clang's thread-safety attributes as macros; other compilers see nothing.
#if defined(__clang__)
#define PLAYFILE_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define PLAYFILE_THREAD_ATTRIBUTE(x)
#endif

#define PLAYFILE_CAPABILITY(name) PLAYFILE_THREAD_ATTRIBUTE(capability(name))
#define PLAYFILE_SCOPED_CAPABILITY PLAYFILE_THREAD_ATTRIBUTE(scoped_lockable)
#define PLAYFILE_GUARDED_BY(lock) PLAYFILE_THREAD_ATTRIBUTE(guarded_by(lock))
#define PLAYFILE_REQUIRES(...) PLAYFILE_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define PLAYFILE_ACQUIRE(...) PLAYFILE_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define PLAYFILE_RELEASE(...) PLAYFILE_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define PLAYFILE_RETURN_CAPABILITY(lock) PLAYFILE_THREAD_ATTRIBUTE(lock_returned(lock))
#define PLAYFILE_NO_THREAD_SAFETY_ANALYSIS PLAYFILE_THREAD_ATTRIBUTE(no_thread_safety_analysis)
