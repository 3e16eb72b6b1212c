// Where the system enters a program.

#include "startup.h"

#include <stdlib.h>

int main(int, char**, char**);

extern "C" {
int _configure_narrow_argv(int);
int _initialize_narrow_environment();
char** _get_initial_narrow_environment();
int _crt_atexit(void (*)());
void _set_app_type(int);

void mainCRTStartup() {
    constexpr int CONSOLE = 1;
    constexpr int UNEXPANDED = 1;
    _set_app_type(CONSOLE);
    _configure_narrow_argv(UNEXPANDED);
    _initialize_narrow_environment();
    if (!MakeStatics())
        exit(255);
    _crt_atexit(DestroyStatics);
    exit(main(*__p___argc(), *__p___argv(), _get_initial_narrow_environment()));
}
}
