// inet_pton, getaddrinfo and the like are the native functions that winsock2.h already brings.
#pragma once

#include <winsock2.h>
