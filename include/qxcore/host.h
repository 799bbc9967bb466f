/**
 * @file
 * The host's name and addresses, name resolution, and whether a name is this host.
 *
 * Addresses stand in chains of the system's own `addrinfo` records, with the system's own families:
 * a client includes <netdb.h> and <netinet/in.h>, or <ws2tcpip.h> on Windows. Any thread may call
 * any function here.
 */
#ifndef QXCORE_HOST_H
#define QXCORE_HOST_H

#include <qxcore/result.h>

struct addrinfo;

QX_BEGIN_DECLS

/**
 * Copies the host's name, narrow.
 *
 * @param buffer  receives the name and its terminator; left alone on failure.
 * @param size    bytes of the buffer.
 * @return QX_S_OK; QX_E_FAIL: the buffer is too short; what the system's failure maps to.
 */
QX_API QXResult QXGetHostNameA(char* buffer, uint32_t size);

/**
 * Copies the host's name, wide. As QXGetHostNameA.
 *
 * @param buffer  receives the name and its terminator; left alone on failure.
 * @param size    16-bit units of the buffer, at least the bytes of the narrow name and one.
 * @return as QXGetHostNameA.
 */
QX_API QXResult QXGetHostName(wchar* buffer, uint32_t size);

/**
 * Gives the machine's addresses and those of "localhost".
 *
 * The lists are built at the first call, which resolves "localhost", and never again: later changes
 * are not seen. The interface list has each IPv4 and then each IPv6 address of the machine but ::1
 * and one fe80::1%1, which stands at the head of the other list instead. Of a record only the
 * family, the address and its length are set, and in the first one the canonical name.
 *
 * The lists belong to the library, which neither changes nor releases them: they stay valid while
 * it is loaded. Either may be null, which is the empty list.
 *
 * @param interfaceList  receives the machine's addresses; null on failure.
 * @param localhostList  receives those of "localhost"; left alone on failure.
 * @return QX_S_OK; QX_E_FAIL: the system has no sockets.
 */
QX_API QXResult QXGetMyAddressInformation(struct addrinfo** interfaceList,
                                          struct addrinfo** localhostList);

/**
 * Tells whether two lists share an address. Only IPv4 with IPv4 and IPv6 with IPv6 compare, by the
 * address alone: ports and scopes do not count.
 *
 * @param first   a list, or null.
 * @param second  a list, or null.
 * @return 1 if some address is in both; otherwise 0.
 */
QX_API int16_t QXCompareAddressInformation(const struct addrinfo* first,
                                           const struct addrinfo* second);

/**
 * Resolves a name by the system's resolver.
 *
 * The name goes there in lower case. One that holds the reserved domain for IPv6 addresses in file
 * names is such an address: "fe80--1s4" and that domain are "fe80::1%4". Blocks for as long as the
 * resolver does.
 *
 * @param node     the host's name or address, not null.
 * @param service  as the system's getaddrinfo takes it, or null.
 * @param hints    as the system's getaddrinfo takes it, or null.
 * @param result   receives the list, which the caller releases with QXfreeaddrinfo.
 * @return 0, or the system's own error number; no QXResult. In C++ std::bad_alloc leaves it when
 *         memory runs out.
 */
QX_API int32_t QXgetaddrinfo(const char* node, const char* service, const struct addrinfo* hints,
                             struct addrinfo** result);

/**
 * Releases a list that QXgetaddrinfo gave.
 *
 * @param list  the list, or null.
 */
QX_API void QXfreeaddrinfo(struct addrinfo* list);

/**
 * Tells whether a name or an address in text form is this machine.
 *
 * It is for the host's name, "localhost", "127.0.0.1", "::1", the empty name, and whatever resolves
 * to an address of this machine. Case does not count. Every answer is kept for as long as the
 * library is loaded, also that a name could not be resolved. A first question may resolve the name,
 * and other callers wait meanwhile. A child that was forked while another thread was at a question
 * must not ask.
 *
 * @param name  narrow, not null; what lies behind 1025 bytes does not count.
 * @return 1 if it is this machine; 0 if not, or if that could not be found out.
 */
QX_API int16_t QXIsThisMyComputerA(const char* name);

/**
 * QXIsThisMyComputerA for a wide name.
 *
 * @param name  wide, not null; at most 1025 bytes in narrow form.
 * @return as QXIsThisMyComputerA; 0 also for a name that is too long.
 */
QX_API int16_t QXIsThisMyComputerW(const wchar* name);

QX_END_DECLS

#endif
