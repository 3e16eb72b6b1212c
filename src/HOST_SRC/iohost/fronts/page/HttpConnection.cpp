#include "fronts/page/HttpConnection.h"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/rfc7230.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/websocket/rfc6455.hpp>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "base/TextUtf8.h"
#include "fronts/page/RequestOrigin.h"
#include "network/TextLines.h"
#include "protocol/Protocol.h"
#include "protocol/Shapes.h"

namespace beast = boost::beast;
namespace http = beast::http;

namespace {

using Request = http::request<http::empty_body>;
using RequestParser = http::request_parser<http::empty_body>;
using Response = http::response<http::string_body>;

constexpr std::uint32_t LONGEST_HEADER = 16 * 1024;
constexpr std::chrono::seconds REQUEST_TIME{30};
constexpr std::chrono::seconds GOODBYE_TIME{1};
constexpr std::string_view SESSION_TARGET = "/session";
constexpr std::string_view GATHERED_TARGET = "/session/gathered";
constexpr std::string_view SCENE_TARGET = "/scene";
constexpr std::uint64_t LARGEST_SCENE = 256u << 20; ///< as of a file

Response MakeResponse(const Request& request, http::status status, std::string_view contentType, std::string strBody) {
    Response response{status, request.version()};
    response.set(http::field::content_type, contentType);
    response.set(http::field::cache_control, "no-store");
    response.set("X-Content-Type-Options", "nosniff");
    response.set("Referrer-Policy", "no-referrer");
    response.keep_alive(request.keep_alive());
    response.body() = std::move(strBody);
    response.prepare_payload();
    return response;
}

Response MakeRefusal(const Request& request, http::status status, std::string_view reason) {
    return MakeResponse(request, status, "text/plain; charset=utf-8", std::string(reason) + "\n");
}

/// The page loads from this server and talks to it alone. Not every browser counts the WebSocket as 'self', so its host
/// is named, which has been checked to be the server's own.
std::string ContentSecurityPolicy(std::string_view host) {
    return "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self' ws://" +
           std::string(host) + "; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
}

/// Why a request isn't answered, if it names another server, or comes from another server's page.
std::optional<std::string_view> FindForeign(const Request& request, const CRequestOrigin& origin) {
    if (request.count(http::field::host) != 1 || !origin.IsOwnHost(request[http::field::host])) {
        return "The request's Host is not an address of this server.";
    }
    const auto nOrigins = request.count(http::field::origin);
    if (nOrigins > 1 || (nOrigins == 1 && !origin.IsOwnOrigin(request[http::field::origin]))) {
        return "The request's Origin is not a page of this server.";
    }
    return std::nullopt;
}

/// Whether the request accepts gzip: lists it, and not with a quality of 0.
bool AcceptsGzip(const Request& request) {
    http::ext_list encodings(request[http::field::accept_encoding]);
    const auto gzip = encodings.find("gzip");
    return gzip != encodings.end() && std::ranges::none_of(gzip->second, [](const auto& parameter) {
               return parameter.first == "q" && parameter.second.find_first_not_of("0.") == std::string_view::npos;
           });
}

Response MakeFileResponse(const Request& request, const CHttpFiles& files, const CAccessToken& token) {
    if (request.method() != http::verb::get && request.method() != http::verb::head) {
        Response response = MakeRefusal(request, http::status::method_not_allowed, "Only GET and HEAD are answered.");
        response.set(http::field::allow, "GET, HEAD");
        return response;
    }
    const SWebFile* pFile = files.Find(request.target());
    std::optional<SWebFileContents> contents =
        pFile != nullptr ? CHttpFiles::Read(*pFile, AcceptsGzip(request)) : std::nullopt;
    if (!contents) {
        std::error_code error;
        return pFile != nullptr && std::filesystem::exists(pFile->path, error)
                   ? MakeRefusal(request, http::status::service_unavailable, "The file can't be read at the moment.")
                   : MakeRefusal(request, http::status::not_found, "There is no such file.");
    }
    const bool bKnown = request[http::field::if_none_match].find(contents->strTag) != std::string_view::npos;
    Response response =
        bKnown ? MakeResponse(request, http::status::not_modified, pFile->contentType, {})
               : MakeResponse(request, http::status::ok, pFile->contentType, std::move(contents->strBytes));
    if (bKnown) {
        response.content_length(boost::none);
    }
    response.set(http::field::cache_control, "no-cache"); // may be kept, but is checked at each use
    response.set(http::field::etag, contents->strTag);
    response.set(http::field::vary, "Accept-Encoding");
    if (contents->bGzip && !bKnown) {
        response.set(http::field::content_encoding, "gzip");
    }
    response.set("Content-Security-Policy", ContentSecurityPolicy(request[http::field::host]));
    if (token.IsInQuery(request.target())) {
        response.set(http::field::set_cookie, token.SetCookie());
    }
    return response;
}

std::string AddressText(asio::ip::address address) {
    if (address.is_v6() && address.to_v6().is_v4_mapped()) {
        address = asio::ip::make_address_v4(asio::ip::v4_mapped, address.to_v6());
    }
    return address.to_string();
}

bool HasPath(const Request& request, std::string_view path) {
    const std::string_view target = request.target();
    return target.substr(0, target.find('?')) == path;
}

/// Whether the request brings a text for an object, or a request of the session. These and the upload of a scene may
/// have a body, no others.
bool BringsText(const Request& request) {
    return request.method() == http::verb::post &&
           (HasPath(request, OBJECT_TEXT_PATH) || HasPath(request, SESSION_TARGET));
}

bool IsSceneUpload(const Request& request) {
    return request.method() == http::verb::post && HasPath(request, SCENE_TARGET);
}

/// Reads the head of one request.
Awaitable<void> ReadHead(TcpStream& stream, beast::flat_buffer& buffer, RequestParser& parser,
                         std::chrono::seconds tLongest, error_code& error) {
    parser.header_limit(LONGEST_HEADER);
    // Only a head is read. No limit at all would refuse every announced length in this version of the library.
    parser.body_limit(std::numeric_limits<std::uint64_t>::max());
    stream.expires_after(tLongest);
    co_await http::async_read_header(stream, buffer, parser, AwaitInto(error));
    if (!error && !parser.is_done() && !BringsText(parser.get()) && !IsSceneUpload(parser.get())) {
        error = http::error::unexpected_body;
    }
}

/// Reads the body behind a head.
Awaitable<std::string> ReadBody(TcpStream& stream, beast::flat_buffer& buffer, RequestParser& head,
                                std::uint64_t nLongest, error_code& error) {
    stream.expires_after(REQUEST_TIME); // the body has its own
    if (head.content_length().value_or(0) > nLongest) {
        error = http::error::body_limit;
        co_return std::string();
    }
    if (head.get()[http::field::expect] == "100-continue") {
        http::response<http::empty_body> goOn{http::status::continue_, head.get().version()};
        co_await http::async_write(stream, goOn, AwaitInto(error));
    }
    http::request_parser<http::string_body> parser(std::move(head));
    parser.body_limit(nLongest);
    co_await http::async_read(stream, buffer, parser, AwaitInto(error));
    co_return std::move(parser.get().body());
}

Response MakeReply(const Request& request, http::status status, const std::string& strReply) {
    return MakeResponse(request, status, "application/json", strReply + "\n");
}

/// Reads the text and hands it over. The reply says what became of it. When the body can't be read to its end, the
/// connection is of no further use and is closed.
Awaitable<Response> TakeText(TcpStream& stream, beast::flat_buffer& buffer, RequestParser& head, const SHttpSite& site,
                             error_code& error) {
    const Request request = head.get();
    const std::string strText = co_await ReadBody(stream, buffer, head, LONGEST_TEXT_LINE, error);
    std::string strReply;
    auto status = http::status::bad_request;
    std::string strProblem;
    if (error == http::error::body_limit) {
        status = http::status::payload_too_large;
        strReply = ErrorReply("the text is longer than " + std::to_string(LONGEST_TEXT_LINE) + " bytes");
    } else if (error) {
        strReply = ErrorReply("the request's body can't be read: " + error.message());
    } else if (!WellFormedText(strText)) {
        strReply = ErrorReply("the text isn't UTF-8");
    } else if (HasPath(request, SESSION_TARGET)) {
        strReply = site.answer(strText);
        status = http::status::ok;
    } else if (auto text = ParseObjectAddress(request.target(), strProblem)) {
        text->m_strText = FromUtf8(strText);
        SDone done = site.session.Do(SEventCommand{.handle = {}, .nDevice = DEVICE_OBJECT_TEXT, .payload = *text});
        CutForViewers(done);
        strReply = ReplyTo(done);
        status = done.outcome.error ? http::status::bad_request : http::status::ok;
    } else {
        strReply = ErrorReply(strProblem);
    }
    Response response = MakeReply(request, status, strReply);
    response.keep_alive(!error && request.keep_alive());
    co_return response;
}

/// Scenes may be large: only one is transferred at a time. Null while another one is.
std::shared_ptr<void> TakeSceneTurn(const SHttpSite& site) {
    if (!site.sceneTurn.expired()) {
        return nullptr;
    }
    auto pTurn = std::make_shared<char>();
    site.sceneTurn = pTurn;
    return pTurn;
}

std::string LoadScene(CSession& session, const std::string& strText) {
    try {
        // The JSON may be large: it's freed before the scene is loaded.
        const auto pScene = ReadScene(ParseJson(strText, "scene"), "scene");
        SDone done = session.Do(SLoadCommand{pScene});
        CutForViewers(done);
        return ReplyTo(done);
    } catch (const CRefusal& refusal) {
        return ErrorReply(refusal.what());
    }
}

/// Reads a scene's file and has it loaded, as TakeText does with a text.
Awaitable<Response> TakeScene(TcpStream& stream, beast::flat_buffer& buffer, RequestParser& head, const SHttpSite& site,
                              error_code& error) {
    const Request request = head.get();
    const std::shared_ptr<void> pTurn = TakeSceneTurn(site);
    if (pTurn == nullptr) {
        Response response =
            MakeReply(request, http::status::service_unavailable, ErrorReply("another scene is being transferred"));
        response.keep_alive(false); // the body isn't read
        co_return response;
    }
    const std::string strText = co_await ReadBody(stream, buffer, head, LARGEST_SCENE, error);
    std::string strReply;
    if (error == http::error::body_limit) {
        strReply = ErrorReply("the scene is larger than 256 MiB");
    } else if (error) {
        strReply = ErrorReply("the request's body can't be read: " + error.message());
    } else {
        strReply = LoadScene(site.session, strText);
    }
    Response response = MakeReply(request, http::status::ok, strReply);
    response.keep_alive(!error && request.keep_alive());
    co_return response;
}

Response MakeSceneResponse(const Request& request, const SHttpSite& site) {
    const SDone done = site.session.Do(SSaveCommand());
    const auto* pScene = std::get_if<SSceneDocument>(&done.outcome.result);
    if (pScene == nullptr) {
        return MakeRefusal(request, http::status::service_unavailable, "The session has ended.");
    }
    Response response = MakeResponse(request, http::status::ok, "application/json", SceneText(*pScene));
    response.set(http::field::content_disposition, "attachment");
    return response;
}

/// Writes a response, or the head of it only.
Awaitable<void> WriteResponse(TcpStream& stream, Response& response, bool bHeaderOnly, error_code& error) {
    http::response_serializer<http::string_body> serializer(response);
    serializer.split(bHeaderOnly);
    stream.expires_after(REQUEST_TIME);
    if (bHeaderOnly) {
        co_await http::async_write_header(stream, serializer, AwaitInto(error));
    } else {
        co_await http::async_write(stream, serializer, AwaitInto(error));
    }
}

/// Says that nothing follows, then reads on for a moment: otherwise a client still sending would lose the response.
Awaitable<void> CloseGently(TcpStream& stream) {
    error_code error;
    stream.socket().shutdown(TcpSocket::shutdown_send, error);
    std::array<char, 65536> dropped;
    stream.expires_after(GOODBYE_TIME);
    while (!error) {
        co_await stream.async_read_some(asio::buffer(dropped), AwaitInto(error));
    }
}

/// Whether the error is about what the client sent, so that it's told, rather than about the connection.
bool IsBadRequest(const error_code& error) {
    return error.category() == http::make_error_code(http::error::end_of_stream).category() &&
           error != http::error::end_of_stream && error != http::error::partial_message;
}

} // namespace

Awaitable<void> ServeHttpConnection(TcpSocket socket, const SHttpSite& site) {
    error_code error;
    const auto localEndpoint = socket.local_endpoint(error);
    if (error) {
        co_return;
    }
    socket.set_option(asio::ip::tcp::no_delay(true), error);
    const CRequestOrigin origin(site.strBoundAddress, AddressText(localEndpoint.address()), site.nPort);

    TcpStream stream(std::move(socket));
    beast::flat_buffer buffer;
    for (;;) {
        RequestParser parser;
        co_await ReadHead(stream, buffer, parser, REQUEST_TIME, error);
        if (error && !IsBadRequest(error)) {
            co_return;
        }
        const Request& request = parser.get();
        const bool bHeaderOnly = !error && request.method() == http::verb::head;
        std::optional<Response> response;
        std::shared_ptr<void> pSceneTurn;
        if (error) {
            response =
                MakeRefusal(Request{}, http::status::bad_request, "This is no HTTP request that is answered here.");
            response->keep_alive(false);
        } else if (const auto foreign = FindForeign(request, origin)) {
            response = MakeRefusal(request, http::status::forbidden, *foreign);
            response->keep_alive(parser.is_done() && request.keep_alive()); // a body isn't read
        } else if (!site.token.IsIn(request[http::field::authorization], request[http::field::cookie],
                                    request.target())) {
            response = MakeRefusal(request, http::status::unauthorized,
                                   "The request lacks the token of the address that the host printed.");
            response->set(http::field::www_authenticate, "Bearer");
            response->keep_alive(parser.is_done() && request.keep_alive()); // a body isn't read
        } else if ((HasPath(request, SESSION_TARGET) || HasPath(request, GATHERED_TARGET)) &&
                   beast::websocket::is_upgrade(request)) {
            const auto pClient =
                std::make_shared<CWebSocketClient>(std::move(stream), site.listener, HasPath(request, GATHERED_TARGET));
            co_await pClient->Run(parser.release());
            co_return;
        } else if (BringsText(request)) {
            response = co_await TakeText(stream, buffer, parser, site, error);
        } else if (IsSceneUpload(request)) {
            response = co_await TakeScene(stream, buffer, parser, site, error);
        } else if (request.method() == http::verb::get && HasPath(request, SCENE_TARGET)) {
            pSceneTurn = TakeSceneTurn(site);
            response = pSceneTurn != nullptr
                           ? MakeSceneResponse(request, site)
                           : MakeRefusal(request, http::status::service_unavailable,
                                         "Another scene is being transferred. Try again in a moment.");
        } else {
            response = MakeFileResponse(request, site.files, site.token);
        }

        co_await WriteResponse(stream, *response, bHeaderOnly, error);
        pSceneTurn.reset();
        if (error || !response->keep_alive()) {
            co_await CloseGently(stream);
            co_return;
        }
    }
}

Awaitable<void> TurnAwayHttpConnection(TcpSocket socket, std::string strReason) {
    TcpStream stream(std::move(socket));
    beast::flat_buffer buffer;
    RequestParser parser;
    error_code error;
    co_await ReadHead(stream, buffer, parser, GOODBYE_TIME, error);
    if (error && !IsBadRequest(error)) {
        co_return;
    }
    const Request request = error ? Request() : parser.get();
    Response response = MakeRefusal(request, http::status::service_unavailable, strReason);
    response.keep_alive(false);
    co_await WriteResponse(stream, response, request.method() == http::verb::head, error);
    co_await CloseGently(stream);
}
