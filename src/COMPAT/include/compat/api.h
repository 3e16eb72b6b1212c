// Visibility of the framework run-time.
//
// The run-time is linked into one shared library of the process (the host library that every other binary already
// needs), so that its state - application object, window table, message queue, keyboard - exists once. The target that
// links it in compiles with COMPAT_BUILD; everybody else imports.
#pragma once

#if defined(_WIN32)
#if defined(COMPAT_BUILD)
#define COMPAT_API __declspec(dllexport)
#else
#define COMPAT_API __declspec(dllimport)
#endif
#else
#define COMPAT_API __attribute__((visibility("default")))
#endif
