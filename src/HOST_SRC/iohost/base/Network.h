// The types that the host's network and the page's server are made of. All run in one io_context, so they name its
// executor instead of any_io_executor: names stay short enough for Windows' object files, and calls direct.
#pragma once

#include <utility> // Boost 1.74's Asio leaves it out in C++20

#include <afxwin.h>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/basic_waitable_timer.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/basic_stream.hpp>

#include <charconv>
#include <chrono>
#include <exception>
#include <string>

#include "base/Caught.h"

// Once GCC 12 has inlined a coroutine's allocation, it wrongly warns that its frame is freed by a mismatched function.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

namespace asio = boost::asio;
using boost::system::error_code;
using std::chrono::steady_clock;

using Executor = asio::io_context::executor_type;
using TcpSocket = asio::basic_stream_socket<asio::ip::tcp, Executor>;
using TcpAcceptor = asio::basic_socket_acceptor<asio::ip::tcp, Executor>;
using TcpStream = boost::beast::basic_stream<asio::ip::tcp, Executor>;
using SteadyTimer = asio::basic_waitable_timer<steady_clock, asio::wait_traits<steady_clock>, Executor>;

template <typename Result>
using Awaitable = asio::awaitable<Result, Executor>;

/// Completes an operation in a coroutine, its error code in `error` instead of an exception.
inline auto AwaitInto(error_code& error) {
    return asio::redirect_error(asio::use_awaitable_t<Executor>(), error);
}

/// Wait for so long, or until the timer is cancelled.
inline Awaitable<void> Pause(SteadyTimer& timer, steady_clock::duration time) {
    error_code ignored;
    timer.expires_after(time);
    co_await timer.async_wait(AwaitInto(ignored));
}

/// Start a coroutine on an executor or in a loop; what it throws is logged.
template <typename Place, typename Function>
void Spawn(Place&& place, const char* pszWhat, Function function) {
    asio::co_spawn(std::forward<Place>(place), std::move(function), [pszWhat](std::exception_ptr pThrown) {
        if (pThrown != nullptr) {
            try {
                std::rethrow_exception(pThrown);
            } catch (...) {
                WriteHostLine(LOG_ERROR, std::string(pszWhat) + ": " + CaughtText());
            }
        }
    });
}

/// An endpoint as ADDRESS:PORT.
template <typename Endpoint>
std::string EndpointText(const Endpoint& endpoint) {
    const std::string strAddress = endpoint.address().to_string();
    return (endpoint.address().is_v6() ? "[" + strAddress + "]" : strAddress) + ":" + std::to_string(endpoint.port());
}

/// The address, its brackets taken off, and the port of such a text; false for any other.
inline bool SplitEndpoint(const std::string& strText, std::string& strAddress, unsigned short& nPort) {
    const size_t nColon = strText.rfind(':');
    if (nColon == std::string::npos || nColon == 0) {
        return false;
    }
    const bool bBrackets = nColon > 2 && strText.front() == '[' && strText[nColon - 1] == ']';
    strAddress = bBrackets ? strText.substr(1, nColon - 2) : strText.substr(0, nColon);
    const char* pEnd = strText.data() + strText.size();
    const auto [pRead, error] = std::from_chars(strText.data() + nColon + 1, pEnd, nPort);
    return error == std::errc() && pRead == pEnd;
}
