#pragma once

#include "Jzon.h"
#include "PlixJzonNode.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <utility>

// A JSON store document bound to its file. It is read once, changed in place
// through the nodes that findNode hands out, and written back whole.
//
// A jpath that starts with "/" is a JSON Pointer (RFC 6901); any other jpath
// is a dotted path whose segments, separated by ".", name object members,
// a segment of digits alone indexing an array ("network.eth0.ip",
// "ports.list.0"). A path that does not resolve names no node.
class jzonFile
{
public:
    explicit jzonFile(std::string path);
    ~jzonFile();
    jzonFile(const jzonFile&) = delete;
    jzonFile& operator=(const jzonFile&) = delete;

    // Loads and parses the file; false when it is not a readable regular
    // file, not JSON, or nests its arrays and objects more than 1000 deep.
    // Nodes handed out before are no longer valid.
    bool read();
    // Replaces the file atomically and durably with the document, keeping
    // the file's mode; on failure leaves the old file intact and error holds
    // the system's reason. The caller decides what of a failure is logged.
    bool write(std::string& error);
    // The node under the jpath, or nullptr. The same element always gives
    // the same node, valid as long as the document lives.
    Jzon::Node* findNode(std::string jpath);

    std::string getPath() const { return path; }

private:
    using Json = nlohmann::ordered_json;

    // An entry of the node index: the node alone, found again by the element
    // it refers to. The set hands its entries out as const; a node may still
    // be handed out to be set, since setting changes the element, never the
    // node, and a node cannot be made to refer to another element.
    struct IndexedNode
    {
        explicit IndexedNode(Json& element) : node(element) {}
        bool operator==(const IndexedNode& other) const
        {
            return node.target() == other.node.target();
        }
        mutable PlixJzonNode node;
    };
    static_assert(!std::is_copy_assignable_v<PlixJzonNode>,
                  "a node keeps the element it was made for");
    struct ByTarget
    {
        std::size_t operator()(const IndexedNode& entry) const noexcept
        {
            return std::hash<const Json*>{}(entry.node.target());
        }
    };
    static_assert(noexcept(ByTarget{}(std::declval<const IndexedNode&>())),
                  "a hasher that may throw makes every entry keep its hash");

    Json* resolve(const std::string& jpath);
    bool readText(std::string& text) const;

    std::string path;
    Json document;
    // Kept in the set's own entries, which never move.
    std::unordered_set<IndexedNode, ByTarget> nodes;
};
