#include "jzonFile.h"

#include "PlixDurableFile.h"
#include "PlixJzonNode.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>
#include <vector>

namespace {
using Json = nlohmann::ordered_json;

// Array indices are written in canonical decimal ("0", "17", never "017");
// nine digits keep the conversion clear of overflow.
bool parseIndex(const std::string& token, std::size_t& index)
{
    if (token.empty() || token.size() > 9 || (token.size() > 1 && token[0] == '0')) {
        return false;
    }
    for (char c : token) {
        if (c < '0' || c > '9') {
            return false;
        }
    }
    index = std::stoul(token);
    return true;
}

Json* child(Json* parent, const std::string& token)
{
    if (parent->is_object()) {
        auto member = parent->find(token);
        return member == parent->end() ? nullptr : &member.value();
    }
    std::size_t index = 0;
    if (parent->is_array() && parseIndex(token, index) && index < parent->size()) {
        return &(*parent)[index];
    }
    return nullptr;
}

// Undoes the pointer escapes "~1" (for "/") and "~0" (for "~"); any other
// use of "~" makes the pointer malformed.
bool unescapeToken(const std::string& escaped, std::string& token)
{
    token.clear();
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        if (escaped[i] != '~') {
            token += escaped[i];
            continue;
        }
        if (i + 1 == escaped.size() || (escaped[i + 1] != '0' && escaped[i + 1] != '1')) {
            return false;
        }
        token += escaped[++i] == '0' ? '~' : '/';
    }
    return true;
}

// Follows a path of tokens separated by one character, from the token that
// begins at start; a token that names nothing ends the walk with nullptr.
template <typename Step>
Json* walk(Json* element, const std::string& path, std::size_t start, char separator, Step step)
{
    while (element != nullptr) {
        std::size_t end = path.find(separator, start);
        element = step(element, path.substr(start, end == std::string::npos ? end : end - start));
        if (end == std::string::npos) {
            return element;
        }
        start = end + 1;
    }
    return nullptr;
}

// A member's key is const, so shrink_to_fit would copy each member's whole
// subtree; here the keys are copied and the values moved into an exact fit.
void trimMembers(Json::object_t& members)
{
    if (members.capacity() == members.size()) {
        return;
    }
    Json::object_t::Container exact;
    exact.reserve(members.size());
    for (auto& member : members) {
        exact.emplace_back(member.first, std::move(member.second));
    }
    static_cast<Json::object_t::Container&>(members).swap(exact);
}

// Deeper than any configuration needs, and well within what the writer, which
// recurses once per level, can take even on a 512 KiB call stack.
constexpr std::size_t kMaxNesting = 1000;

// The parser grows every object and array by doubling it; the document is
// kept for the whole run, so the room it never uses is given back once. The
// parser reads any nesting without recursion, and so does this walk: a file
// nested too deep to be written back is refused here, when it is read, and
// not found out by a commit that overflows the call stack. False for such a
// document, which is then left half trimmed.
bool trimWithinNesting(Json& document)
{
    std::vector<std::pair<Json*, std::size_t>> pending{{&document, 0}};
    while (!pending.empty()) {
        auto [element, depth] = pending.back();
        pending.pop_back();
        if (element->is_structured() && depth == kMaxNesting) {
            return false;
        }
        if (element->is_object()) {
            auto& members = element->get_ref<Json::object_t&>();
            trimMembers(members);
            for (auto& member : members) {
                pending.emplace_back(&member.second, depth + 1);
            }
        } else if (element->is_array()) {
            auto& items = element->get_ref<Json::array_t&>();
            items.shrink_to_fit();
            for (auto& item : items) {
                pending.emplace_back(&item, depth + 1);
            }
        }
    }
    return true;
}
} // namespace

jzonFile::jzonFile(std::string path) : path(std::move(path))
{
}

jzonFile::~jzonFile() = default;

bool jzonFile::read()
{
    // What an interrupted rewrite left is never read and never needed.
    PlixDurableFile(path).removeLeftover();
    nodes.clear();
    std::string text;
    if (!readText(text)) {
        return false;
    }
    document = Json::parse(text, nullptr, false);
    if (!document.is_discarded() && !trimWithinNesting(document)) {
        document = Json(Json::value_t::discarded);
    }
    return !document.is_discarded();
}

// Only a regular file is read: a FIFO or a device named by mistake would
// otherwise block the start-up or never end.
bool jzonFile::readText(std::string& text) const
{
    int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    struct stat status;
    bool ok = fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
    char chunk[65536];
    ssize_t got = 0;
    while (ok && (got = ::read(fd, chunk, sizeof chunk)) != 0) {
        if (got < 0 && errno != EINTR) {
            ok = false;
        } else if (got > 0) {
            text.append(chunk, static_cast<std::size_t>(got));
        }
    }
    close(fd);
    return ok;
}

bool jzonFile::write(std::string& error)
{
    const std::string text = document.dump(4, ' ', false, Json::error_handler_t::replace) + "\n";
    return PlixDurableFile(path).replace(text, error);
}

Jzon::Node* jzonFile::findNode(std::string jpath)
{
    Json* element = resolve(jpath);
    if (element == nullptr) {
        return nullptr;
    }
    return &nodes.emplace(*element).first->node;
}

jzonFile::Json* jzonFile::resolve(const std::string& jpath)
{
    if (document.is_discarded()) {
        return nullptr;
    }
    if (!jpath.empty() && jpath[0] == '/') {
        return walk(&document, jpath, 1, '/', [](Json* element, const std::string& escaped) {
            std::string token;
            return unescapeToken(escaped, token) ? child(element, token) : nullptr;
        });
    }
    return walk(&document, jpath, 0, '.', child);
}
