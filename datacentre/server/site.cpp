#include "server/site.h"

#include "images/images.h"
#include "server/embedded_page_files.h"

#include <chrono>
#include <string_view>

namespace datacentre {

namespace {

constexpr std::chrono::milliseconds kPollPatience{25000};
constexpr std::string_view kAssets = "/assets/";
constexpr std::string_view kDrive = "/drive/";
// Stands in join.html where the driver's script goes.
constexpr std::string_view kDriverMark = "<!-- driver -->";
constexpr std::string_view kDriverTag = "<script src=\"/assets/drive.js\"></script>";
constexpr const char* kHtml = "text/html; charset=utf-8";
constexpr const char* kPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
    "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

struct AssetType {
    std::string_view suffix;
    const char* type;
};

constexpr AssetType kAssetTypes[] = {
    {".css", "text/css; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".svg", "image/svg+xml"},
};

struct ImagePath {
    std::string_view path;
    const char* file;
};

constexpr ImagePath kImagePaths[] = {
    {"/agent/OvraMac.dmg", kAgentImageName},
    {"/cdn/OvraMac.dmg", kAgentImageName},
    {"/agent/OvraTesselLumora.dmg", kApplicationImageName},
    {"/cdn/OvraTesselLumora.dmg", kApplicationImageName},
};

Answer notFound() {
    return {404, kHtml,
            "<!doctype html><html lang=\"en\"><title>Not found</title><h1>Not found</h1>"
            "<p>The data centre has nothing at this address.</p></html>\n"};
}

std::string replaced(std::string_view text, std::string_view mark, std::string_view value) {
    std::string result(text);
    if (const auto position = result.find(mark); position != std::string::npos)
        result.replace(position, mark.size(), value);
    return result;
}

std::string agentOf(const ReceivedRequest& request) {
    for (const auto& [name, value] : request.headers)
        if (name == "user-agent")
            return value;
    return {};
}

Answer jsonAnswer(int status, const Json& json) { return {status, "application/json", json.dump()}; }

} // namespace

Site::Site(std::string pagePath, const std::filesystem::path& imageFolder, Driving driving)
    : pagePath_("/" + std::move(pagePath)), driving_(driving), images_(imageFolder), answers_(images_) {}

Delivery Site::deliver(const ReceivedRequest& request) {
    if (request.path.starts_with(kDrive))
        return {driveCall(request), {}};
    requests_.add(request);
    Delivery delivery{normalAnswer(request),
                      behaviours_.take(request.path, agentOf(request)).value_or(Behaviour{})};
    delivery.behaviour.replaceIn(delivery.answer);
    return delivery;
}

void Site::replacePage(std::optional<std::string> html) {
    const std::lock_guard lock(mutex_);
    replacement_ = std::move(html);
}

std::string Site::lastToken() const {
    const std::lock_guard lock(mutex_);
    return lastToken_;
}

Answer Site::normalAnswer(const ReceivedRequest& request) {
    if (request.method != "GET" && request.method != "HEAD")
        return {
            405, "text/plain; charset=utf-8", "Only GET and HEAD are served.\n", {{"Allow", "GET, HEAD"}}};
    if (request.path == pagePath_)
        return joinPage(request);
    if (request.path == "/")
        return {302, "", "", {{"Location", pagePath_}}};
    if (auto answer = answers_.answer(request))
        return *std::move(answer);
    if (auto answer = asset(request.path == "/favicon.ico" ? "/assets/icon.svg" : request.path))
        return *std::move(answer);
    if (auto answer = image(request.path))
        return *std::move(answer);
    return notFound();
}

Answer Site::joinPage(const ReceivedRequest& request) {
    const std::lock_guard lock(mutex_);
    if (const auto token = request.parameter("lumora_token"); !token.empty())
        lastToken_ = token;
    // A replacement is often there to do what a policy forbids, and driven scripts are evaluated: neither gets a policy.
    if (replacement_)
        return {200, kHtml, *replacement_, {{"Cache-Control", "no-store"}}};
    const auto page = embeddedPageFile("join.html").value_or("");
    Answer answer{200,
                  kHtml,
                  replaced(page, kDriverMark, isDriving() ? kDriverTag : ""),
                  {{"Cache-Control", "no-store"}}};
    if (!isDriving())
        answer.headers.emplace_back("Content-Security-Policy", kPolicy);
    return answer;
}

std::optional<Answer> Site::asset(const std::string& path) const {
    if (!path.starts_with(kAssets) || (path == "/assets/drive.js" && !isDriving()))
        return std::nullopt;
    const auto file = embeddedPageFile(path.substr(kAssets.size()));
    if (!file)
        return std::nullopt;
    for (const auto& [suffix, type] : kAssetTypes)
        if (path.ends_with(suffix))
            return Answer{200, type, std::string(*file), {{"Cache-Control", "no-cache"}}};
    return std::nullopt;
}

std::optional<Answer> Site::image(const std::string& path) const {
    for (const auto& [known, file] : kImagePaths)
        if (path == known)
            if (auto bytes = images_.bytes(file))
                return Answer{200, "application/x-apple-diskimage", *std::move(bytes)};
    return std::nullopt;
}

Answer Site::driveCall(const ReceivedRequest& request) {
    if (!isDriving())
        return notFound();
    if (request.path == "/drive/next") {
        const auto poll = drive_.next(request.parameter("page"), kPollPatience, request.clientIsThere);
        if (poll.kind == DriveQueue::PollKind::replaced)
            return {410, "text/plain", "A newer page has taken over.\n"};
        if (poll.kind == DriveQueue::PollKind::idle)
            return {204, "", ""};
        return jsonAnswer(200, {{"id", poll.script.id}, {"script", poll.script.text}});
    }
    if (request.path == "/drive/result" && request.method == "POST") {
        const Json json = Json::parse(request.body, nullptr, false);
        if (!json.is_object() || !json.contains("id") || !json["id"].is_number_unsigned())
            return jsonAnswer(400, {{"error", "a result needs its script's id"}});
        const auto error = json.find("error");
        const bool threw = error != json.end() && error->is_string();
        const bool taken = drive_.finish(json["id"].get<std::uint64_t>(), json.value("result", Json()),
                                         threw ? std::optional(error->get<std::string>()) : std::nullopt);
        return jsonAnswer(200, {{"taken", taken}});
    }
    return notFound();
}

} // namespace datacentre
