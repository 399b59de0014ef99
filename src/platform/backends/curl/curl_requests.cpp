// Requests of the caller's own making: opened, sent and read step by step.

#include "platform/backends/curl/curl_client.h"

#include "base/text.h"

#include <algorithm>
#include <strings.h>

namespace velmora::platform::http {

namespace {

std::string withoutControls(std::string text) {
    text.erase(std::remove_if(text.begin(), text.end(),
                              [](char byte) { return static_cast<unsigned char>(byte) < ' '; }),
               text.end());
    return text;
}

std::string_view nameOf(std::string_view header) { return header.substr(0, header.find(':')); }

bool sameName(std::string_view a, std::string_view b) {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

bool isVerb(std::string_view verb) {
    return std::all_of(
        verb.begin(), verb.end(),
        [](char byte) {
            return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || byte == '-';
        });
}

} // namespace

InternetHandle CurlClient::InternetOpenA(std::u16string_view agent) {
    return load() ? keep(0, Session{withoutControls(ansi_.encode(agent))}) : 0;
}

InternetHandle CurlClient::InternetConnectA(InternetHandle session, std::u16string_view host,
                                            std::int32_t port,
                                            std::optional<std::u16string_view> user,
                                            std::u16string_view password, std::uint32_t service) {
    const Session *parent = find<Session>(session);
    if (parent == nullptr || host.empty())
        return 0;
    Connection connection;
    connection.agent = parent->agent;
    connection.server = ansi_.encode(host);
    const bool bare = std::count(host.begin(), host.end(), u':') > 1 && host.front() != u'[';
    if (bare)
        connection.server = "[" + connection.server + "]";
    if (port != 0)
        connection.server += ":" + std::to_string(port);
    if (user) {
        connection.user = ansi_.encode(*user);
        connection.password = ansi_.encode(password);
    }
    connection.http = service == INTERNET_SERVICE_HTTP;
    return keep(session, std::move(connection));
}

InternetHandle CurlClient::HttpOpenRequestA(InternetHandle connection, std::u16string_view verb,
                                            std::u16string_view object, std::u16string_view version,
                                            std::uint32_t flags) {
    const Connection *parent = find<Connection>(connection);
    const std::string method = ansi_.encode(verb);
    if (parent == nullptr || !parent->http || !isVerb(method))
        return 0;
    OpenRequest open;
    open.possible = isHostText(parent->server);
    std::string path = escaped(ansi_.encode(object));
    if (path.empty() || path.front() != '/')
        path.insert(0, "/");
    open.request.url = "http://" + parent->server + path;
    open.request.verb = method;
    open.request.agent = parent->agent;
    open.request.user = parent->user;
    open.request.password = parent->password;
    open.request.oldProtocol = !equalsIgnoringCase(version, u"HTTP/1.1");
    // What the library would send unasked.
    open.request.headers = {"Accept:", "Expect:", "Content-Type:"};
    if ((flags & INTERNET_FLAG_RELOAD) != 0)
        open.request.headers.emplace_back("Pragma: no-cache");
    return keep(connection, std::move(open));
}

bool CurlClient::HttpAddRequestHeadersA(InternetHandle request, std::u16string_view headers,
                                        std::uint32_t modifiers) {
    OpenRequest *open = find<OpenRequest>(request);
    if (open == nullptr)
        return false;
    std::vector<std::string> &lines = open->request.headers;
    bool well = true;
    for (const std::u16string &text : split(headers, u'\n')) {
        const std::string line = withoutControls(ansi_.encode(text));
        if (line.empty())
            continue;
        const std::string_view name = nameOf(line);
        if (name.empty() || name.size() == line.size()) {
            well = false; // no header
            continue;
        }
        const auto same = [&](const std::string &l) { return sameName(nameOf(l), name); };
        const bool unset = line.find_first_not_of(' ', name.size() + 1) == std::string::npos;
        const bool replaces = (modifiers & HTTP_ADDREQ_FLAG_REPLACE) != 0;
        // The rows that only keep something from being sent give way to any value.
        lines.erase(std::remove_if(lines.begin(), lines.end(),
                                   [&](const std::string &l) {
                                       return same(l) && (replaces || l.back() == ':');
                                   }),
                    lines.end());
        lines.push_back(unset ? std::string(name) + ":" : line);
    }
    return well;
}

bool CurlClient::HttpSendRequestA(InternetHandle request, std::u16string_view body,
                                  std::size_t bodyLength) {
    OpenRequest *open = find<OpenRequest>(request);
    if (open == nullptr || !open->possible)
        return false;
    Request sent = open->request;
    sent.body = ansi_.encode(body);
    sent.body.resize(std::min(bodyLength, sent.body.size()));
    open->exchange.reset(); // a request may be sent again
    // A body that brings less than this holds the window for nothing.
    sent.stall = limits_.read;
    const std::string address = sent.url;
    open->exchange = std::make_unique<Exchange>(*curl_, jar_, limits_, std::move(sent));
    if (start(*open->exchange, address, Exchange::Time::max())) {
        if (watch_ && ahead_ == nullptr)
            ahead_ = std::make_unique<Ticker>(watch_, [this] { takeAhead(); });
        return true;
    }
    open->exchange.reset();
    return false;
}

std::optional<std::string> CurlClient::HttpQueryInfoA(InternetHandle request, std::uint32_t what,
                                                      std::size_t capacity) {
    const OpenRequest *open = find<OpenRequest>(request);
    if (open == nullptr || open->exchange == nullptr || what != HTTP_QUERY_RAW_HEADERS)
        return std::nullopt;
    const std::string &block = open->exchange->header().bytes();
    if (block.size() > capacity)
        return std::nullopt;
    return block;
}

bool CurlClient::InternetReadFile(InternetHandle request, std::size_t count, std::string &bytes) {
    bytes.clear();
    OpenRequest *open = find<OpenRequest>(request);
    if (open == nullptr || open->exchange == nullptr)
        return false;
    constexpr std::size_t least = 1024;
    open->exchange->read(count, least, bytes);
    const Ending ending = open->exchange->ending();
    return !bytes.empty() || count == 0 || ending == Ending::Running || ending == Ending::Whole;
}

} // namespace velmora::platform::http
