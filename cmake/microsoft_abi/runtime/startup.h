// Between the start-up code's sources.
#pragma once

/// Make the static objects of this program or library.
bool MakeStatics();
/// Destroy them, in the reverse order, and call what else was given to atexit.
void DestroyStatics();
