#include "PlixFuzzCall.h"

#include <cmath>
#include <limits>

namespace {
const char* const kAdaptorPath = "/plix";
const char* const kAdaptor = "com.orvanta.plix.dBusAdaptor";
const char* const kMonitor = "com.orvanta.plix.Monitor";
const char* const kInvalidArgs = "org.freedesktop.DBus.Error.InvalidArgs";
const char* const kUnknownMethod = "org.freedesktop.DBus.Error.UnknownMethod";
constexpr std::size_t kHugeText = 1024 * 1024;
constexpr std::size_t kLongId = 10000;

// What each family of methods may answer, from the engine's table of codes
// and the validators and actions of the test configuration.
const std::set<int> kStartCodes{0, 8};
const std::set<int> kCommitCodes{0, 4, 10, 13, 200, 203, 204, 205, 206, 207, 401, 402};
const std::set<int> kSetCodes{0, 1, 4, 9, 15, 200, 204, 205};
const std::set<int> kTransientSetCodes{0, 8, 9, 10, 13, 15, 200, 204, 205};
const std::set<int> kGetCodes{0, 4, 9, 11};
const std::set<int> kTransientGetCodes{0, 9, 11};
const std::set<int> kVerifyCodes{0, 4, 8, 9, 11, 201};
const std::set<int> kApplyCodes{0, 8, 9, 10, 11, 13, 15, 200, 203, 204, 205, 206, 207, 401, 402};

// The setters and getters by value type: D-Bus type, method name part.
struct PlixTyped
{
    const char* code;
    const char* name;
};
const PlixTyped kTypes[] = {{"b", "Bool"}, {"i", "Int"}, {"d", "Double"}, {"s", "String"}};

PlixFuzzCall callOf(const char* path, const char* interface, const char* method)
{
    PlixFuzzCall call;
    call.path = path;
    call.interface = interface;
    call.method = method;
    return call;
}

GVariant* tupleOf(std::vector<GVariant*> items)
{
    return g_variant_new_tuple(items.data(), items.size());
}
} // namespace

PlixFuzzCallMaker::PlixFuzzCallMaker(std::mt19937& random, std::vector<std::string> declaredIds,
                                     bool withMonitor)
    : mRandom(random), mIds(std::move(declaredIds)), mWithMonitor(withMonitor)
{
}

PlixFuzzCall PlixFuzzCallMaker::next()
{
    const int which = chance(100);
    if (which < 3) {
        return controlCall();
    }
    if (mWithMonitor && which < 13) {
        return monitorCall();
    }
    return adaptorCall();
}

PlixFuzzCall PlixFuzzCallMaker::transactionStart()
{
    PlixFuzzCall call = callOf(kAdaptorPath, kAdaptor, "Transactionstart");
    call.params = g_variant_new("(b)", chance(2) == 0);
    call.statusIndex = 0;
    call.allowedCodes = kStartCodes;
    call.replyType = "(i)";
    return call;
}

PlixFuzzCall PlixFuzzCallMaker::adaptorCall()
{
    const PlixTyped& typed = kTypes[chance(4)];
    const std::string type = typed.code;
    PlixFuzzCall call = callOf(kAdaptorPath, kAdaptor, "");
    std::string rightType;
    switch (chance(7)) {
    case 0:
        call = transactionStart();
        rightType = "(b)";
        break;
    case 1:
        call.method = "Transactionstop";
        call.allowedCodes = kCommitCodes;
        call.replyType = "(i)";
        call.statusIndex = 0;
        rightType = "()";
        break;
    case 2:
    case 3: {
        const bool transient = chance(3) == 0;
        call.method = std::string("Set") + typed.name + "Value" + (transient ? "Transient" : "");
        call.params = tupleOf({g_variant_new_string(anyId().c_str()), valueOf(type)});
        call.allowedCodes = transient ? kTransientSetCodes : kSetCodes;
        call.replyType = "(i)";
        call.statusIndex = 0;
        rightType = "(s" + type + ")";
        break;
    }
    case 4:
    case 5: {
        const bool transient = chance(2) == 0;
        call.method = std::string("Get") + typed.name + "Value" + (transient ? "Transient" : "");
        call.params = g_variant_new("(s)", anyId().c_str());
        call.allowedCodes = transient ? kTransientGetCodes : kGetCodes;
        // Plain getters answer (value, status), transient ones (status, value).
        call.statusIndex = transient ? 0 : 1;
        call.replyType = transient ? "(i" + type + ")" : "(" + type + "i)";
        rightType = "(s)";
        break;
    }
    default:
        call.method = "Verify";
        call.params =
            tupleOf({g_variant_new_variant(anyVariant(0)), g_variant_new_string(anyId().c_str())});
        call.allowedCodes = kVerifyCodes;
        call.replyType = "(i)";
        call.statusIndex = 0;
        rightType = "(vs)";
        break;
    }
    if (chance(12) == 0) {
        return wrongTypes(std::move(call), rightType);
    }
    return call;
}

PlixFuzzCall PlixFuzzCallMaker::monitorCall()
{
    PlixFuzzCall call = callOf(kAdaptorPath, kMonitor, "");
    std::string rightType;
    const int which = chance(3);
    if (which == 0) {
        call.method = "ListValues";
        call.replyType = "(a(sssb))";
        rightType = "()";
    } else if (which == 1) {
        GVariantBuilder ids;
        g_variant_builder_init(&ids, G_VARIANT_TYPE("as"));
        for (int i = chance(12); i > 0; --i) {
            g_variant_builder_add(&ids, "s", anyId().c_str());
        }
        call.method = "GetValues";
        call.params = g_variant_new("(as)", &ids);
        call.allowedCodes = kTransientGetCodes;
        call.statusIndex = 0;
        call.replyType = "(ia{sv})";
        rightType = "(as)";
    } else {
        GVariantBuilder changes;
        g_variant_builder_init(&changes, G_VARIANT_TYPE("a{sv}"));
        for (int i = chance(6); i > 0; --i) {
            g_variant_builder_add(&changes, "{sv}", anyId().c_str(), anyVariant(1));
        }
        call.method = "Apply";
        call.params = g_variant_new("(a{sv}b)", &changes, chance(2) == 0);
        call.allowedCodes = kApplyCodes;
        call.statusIndex = 0;
        call.replyType = "(is)";
        rightType = "(a{sv}b)";
    }
    if (chance(12) == 0) {
        return wrongTypes(std::move(call), rightType);
    }
    return call;
}

PlixFuzzCall PlixFuzzCallMaker::controlCall()
{
    PlixFuzzCall call = callOf("/ctrl", "com.orvanta.dbus", chance(2) == 0 ? "Init" : "Quit");
    call.replyType = "()";
    if (chance(4) == 0) {
        call.method = "NoSuchMethod";
        call.expectedError = kUnknownMethod;
    }
    return call;
}

// Replaces the arguments by a tuple of another signature; the glue must
// refuse it before any handler runs.
PlixFuzzCall PlixFuzzCallMaker::wrongTypes(PlixFuzzCall call, const std::string& rightType)
{
    if (call.params != nullptr) {
        g_variant_unref(g_variant_ref_sink(call.params));
    }
    std::vector<GVariant*> items;
    for (int i = chance(4); i > 0; --i) {
        items.push_back(anyBasic());
    }
    GVariant* params = g_variant_ref_sink(tupleOf(items));
    if (g_variant_get_type_string(params) == rightType) {
        // The items belong to the first tuple until the second holds them.
        items.push_back(g_variant_new_uint64(7));
        GVariant* longer = g_variant_ref_sink(tupleOf(items));
        g_variant_unref(params);
        params = longer;
    }
    call.params = params;
    call.expectedError = kInvalidArgs;
    return call;
}

GVariant* PlixFuzzCallMaker::valueOf(const std::string& type)
{
    if (type == "b") {
        return g_variant_new_boolean(chance(2) == 0);
    }
    if (type == "i") {
        return g_variant_new_int32(anyInt());
    }
    if (type == "d") {
        return g_variant_new_double(anyDouble());
    }
    return g_variant_new_string(anyText().c_str());
}

std::string PlixFuzzCallMaker::anyId()
{
    switch (chance(20)) {
    case 0:
        return "";
    case 1:
        return std::string(kLongId, 'x');
    case 2:
        return "nosuch/" + std::to_string(chance(1000));
    case 3:
        return unicodeText(1 + chance(40));
    case 4:
        return chance(50) == 0 ? std::string(kHugeText, 'i') : mIds[0] + "/";
    default:
        return mIds[static_cast<std::size_t>(chance(static_cast<int>(mIds.size())))];
    }
}

std::string PlixFuzzCallMaker::anyText()
{
    static const char* const hostile[] = {"$(touch /tmp/plix-fuzz-canary)",
                                          "`id`",
                                          "a;b",
                                          "%greeting",
                                          "'",
                                          "\"",
                                          "\\",
                                          "%",
                                          "-rf",
                                          "\n",
                                          "10.0.0.1",
                                          "255.255.255.0"};
    switch (chance(10)) {
    case 0:
        return "";
    case 1:
        return chance(20) == 0 ? std::string(kHugeText, 's') : std::string(kLongId, 'v');
    case 2:
    case 3:
        return unicodeText(1 + chance(64));
    case 4:
    case 5:
        return hostile[chance(sizeof hostile / sizeof hostile[0])];
    default:
        return "v" + std::to_string(chance(100000));
    }
}

// Text of random code points, NUL excluded, control characters included;
// D-Bus strings must be valid UTF-8, so surrogates are left out.
std::string PlixFuzzCallMaker::unicodeText(std::size_t length)
{
    std::string text;
    while (text.size() < length) {
        gunichar c = chance(4) == 0 ? static_cast<gunichar>(1 + chance(0x10FFFF))
                                    : static_cast<gunichar>(1 + chance(0x7F));
        if (!g_unichar_validate(c)) {
            continue;
        }
        char bytes[6];
        text.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(c, bytes)));
    }
    return text;
}

gint32 PlixFuzzCallMaker::anyInt()
{
    static const gint32 edges[] = {0,
                                   1,
                                   -1,
                                   80,
                                   5900,
                                   65535,
                                   65536,
                                   std::numeric_limits<gint32>::min(),
                                   std::numeric_limits<gint32>::max()};
    if (chance(2) == 0) {
        return edges[chance(sizeof edges / sizeof edges[0])];
    }
    return static_cast<gint32>(mRandom());
}

double PlixFuzzCallMaker::anyDouble()
{
    static const double edges[] = {0.0,
                                   -0.0,
                                   2.5,
                                   std::numeric_limits<double>::quiet_NaN(),
                                   std::numeric_limits<double>::infinity(),
                                   -std::numeric_limits<double>::infinity(),
                                   std::numeric_limits<double>::denorm_min(),
                                   std::numeric_limits<double>::max()};
    if (chance(2) == 0) {
        return edges[chance(sizeof edges / sizeof edges[0])];
    }
    return std::ldexp(static_cast<double>(static_cast<gint32>(mRandom())), chance(200) - 100);
}

// A value of any type: the basic ones, arrays, dictionaries, tuples and
// variants in variants.
GVariant* PlixFuzzCallMaker::anyVariant(int depth)
{
    const int which = chance(depth > 2 ? 1 : 6);
    if (which == 1) {
        return g_variant_new_variant(anyVariant(depth + 1));
    }
    if (which == 2) {
        return g_variant_new_strv(nullptr, 0);
    }
    if (which == 3) {
        return g_variant_new("(is)", anyInt(), anyText().c_str());
    }
    if (which == 4) {
        GVariantBuilder dict;
        g_variant_builder_init(&dict, G_VARIANT_TYPE("a{sv}"));
        g_variant_builder_add(&dict, "{sv}", anyId().c_str(), anyVariant(depth + 1));
        return g_variant_builder_end(&dict);
    }
    return anyBasic();
}

GVariant* PlixFuzzCallMaker::anyBasic()
{
    switch (chance(13)) {
    case 0:
        return g_variant_new_boolean(chance(2) == 0);
    case 1:
        return g_variant_new_byte(static_cast<guchar>(chance(256)));
    case 2:
        return g_variant_new_int16(static_cast<gint16>(anyInt()));
    case 3:
        return g_variant_new_uint16(static_cast<guint16>(anyInt()));
    case 4:
    case 5:
        return g_variant_new_int32(anyInt());
    case 6:
        return g_variant_new_uint32(static_cast<guint32>(anyInt()));
    case 7:
        return g_variant_new_int64(static_cast<gint64>(anyInt()) * (gint64{1} << chance(32)));
    case 8:
        return g_variant_new_uint64(static_cast<guint64>(anyInt()));
    case 9:
        return g_variant_new_double(anyDouble());
    case 10:
        return g_variant_new_object_path("/plix");
    case 11:
        return g_variant_new_signature("a{sv}");
    default:
        return g_variant_new_string(anyText().c_str());
    }
}
