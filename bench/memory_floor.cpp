// The memory floor: a bare GDBus program that owns a name and loads and
// initialises the same libraries as the service (libstdc++, expat,
// libcrypto with its digests), but holds no configuration. The service's
// resident memory beyond this program's is what its model costs.
//
//   memory_floor [NAME]     (default com.orvanta.plix.memoryfloor)

#include <expat.h>
#include <gio/gio.h>
#include <openssl/evp.h>

#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>
#include <unordered_map>

namespace {
// One small document through expat, so its parser code is paged in.
bool touchExpat()
{
    XML_Parser parser = XML_ParserCreate(nullptr);
    const char document[] = "<plix><DataSet ID=\"a\"/></plix>";
    const bool parsed = XML_Parse(parser, document, sizeof document - 1, XML_TRUE) != 0;
    XML_ParserFree(parser);
    return parsed;
}

// One digest by name, as password hashing does, so libcrypto's tables exist.
bool touchCrypto()
{
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    const EVP_MD* md = EVP_get_digestbyname("sha256");
    return md != nullptr && EVP_Digest("x", 1, digest, &length, md, nullptr) == 1;
}

// The containers and streams of the standard library the service uses.
bool touchStandardLibrary()
{
    std::unordered_map<std::string, std::string> table{{"a", "b"}};
    std::ostringstream text;
    text << table.at("a") << 1.5;
    std::cout << std::flush;
    return !text.str().empty();
}

void nameLost(GDBusConnection*, const gchar* name, gpointer loop)
{
    std::fprintf(stderr, "memory_floor: name %s not owned\n", name);
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
}
} // namespace

int main(int argc, char** argv)
{
    if (!touchExpat() || !touchCrypto() || !touchStandardLibrary()) {
        std::fprintf(stderr, "memory_floor: a library did not initialise\n");
        return 1;
    }
    GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    const char* name = argc > 1 ? argv[1] : "com.orvanta.plix.memoryfloor";
    g_bus_own_name(G_BUS_TYPE_SYSTEM, name, G_BUS_NAME_OWNER_FLAGS_NONE, nullptr, nullptr, nameLost,
                   loop, nullptr);
    g_main_loop_run(loop);
    return 1;
}
