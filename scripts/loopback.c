/* Preloaded in front of a server that listens on every address: makes it listen on the loopback
 * alone, so that a screen served for a demonstration is not served to the network. */

#define _GNU_SOURCE
#include <dlfcn.h>
#include <netinet/in.h>
#include <string.h>
#include <sys/socket.h>

int bind(int socket, const struct sockaddr *address, socklen_t length) {
    int (*real_bind)(int, const struct sockaddr *, socklen_t) =
        (int (*)(int, const struct sockaddr *, socklen_t))dlsym(RTLD_NEXT, "bind");
    if (address->sa_family == AF_INET) {
        struct sockaddr_in local;
        memcpy(&local, address, sizeof local);
        if (local.sin_addr.s_addr == htonl(INADDR_ANY))
            local.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        return real_bind(socket, (struct sockaddr *)&local, length);
    }
    if (address->sa_family == AF_INET6) {
        static const unsigned char loopback[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 127, 0, 0, 1};
        struct sockaddr_in6 local;
        memcpy(&local, address, sizeof local);
        if (IN6_IS_ADDR_UNSPECIFIED(&local.sin6_addr))
            memcpy(&local.sin6_addr, loopback, sizeof loopback);
        return real_bind(socket, (struct sockaddr *)&local, length);
    }
    return real_bind(socket, address, length);
}
