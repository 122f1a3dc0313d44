// What a screen reader sees of the page: speaks to the accessibility bus of the session. Lines of
// its standard input ask it, each answer is a line of JSON, and so is what the page announces
// meanwhile.
//
//   tree [PATH]   the accessible objects below PATH, or of the whole page
//   press PATH    does the object's first action
//
// Everything is asked of every object, wanted or not: a question must not be able to end the
// engine.
#include <gio/gio.h>

#include <cstdint>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
using Answer = std::function<void(GVariant*)>;

constexpr int patience = 20'000;  // milliseconds
const std::string atspi = "org.a11y.atspi.";
const std::string pages = "/org/a11y/webkit/accessible";

void tell(const json& line) {
    std::cout << line.dump(-1, ' ', false, json::error_handler_t::replace) << std::endl;
}

[[noreturn]] void fail(const std::string& why) {
    tell({{"failed", why}});
    std::exit(1);
}

std::string text(GVariant* parent, gsize index) {
    const char* value = nullptr;
    g_variant_get_child(parent, index, "&s", &value);
    return value;
}

GVariant* callOnce(GDBusConnection* bus, const std::string& name, const std::string& path,
                   const std::string& interface, const char* method,
                   GVariant* arguments = nullptr) {
    return g_dbus_connection_call_sync(bus, name.c_str(), path.c_str(), interface.c_str(), method,
                                       arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, patience,
                                       nullptr, nullptr);
}

class Reader {
public:
    Reader() {
        GDBusConnection* const session = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
        if (session == nullptr) fail("no session bus");
        GVariant* const address =
            callOnce(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress");
        if (address == nullptr) fail("no accessibility bus");
        bus_ = g_dbus_connection_new_for_address_sync(
            text(address, 0).c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        g_variant_unref(address);
        if (bus_ == nullptr) fail("the accessibility bus lets nobody in");
        listenFor("state-changed:focused", "StateChanged");
        listenFor("announcement", "Announcement");
        listenFor("children-changed", "ChildrenChanged");
        listenFor("text-changed", "TextChanged");
        tell({{"ready", true}});
    }

    void obey(const std::string& line) {
        const auto space = line.find(' ');
        const std::string path = space == std::string::npos ? "" : line.substr(space + 1);
        if (line.starts_with("tree")) {
            readTree(path);
        } else if (line.starts_with("press ")) {
            callOnce(bus_, page_, path, atspi + "Action", "DoAction", g_variant_new("(i)", 0));
            tell({{"pressed", path}});
        }
    }

private:
    struct Question {
        Reader* reader;
        Answer answer;
    };

    // The engine tells events only once somebody has asked the registry for them.
    void listenFor(const char* event, const char* member) {
        callOnce(bus_, atspi + "Registry", "/org/a11y/atspi/registry", atspi + "Registry",
                 "RegisterEvent", g_variant_new("(s)", (std::string("object:") + event).c_str()));
        g_dbus_connection_signal_subscribe(
            bus_, nullptr, (atspi + "Event.Object").c_str(), member, nullptr, nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE,
            [](GDBusConnection*, const gchar*, const gchar* path, const gchar*, const gchar* name,
               GVariant* values, gpointer) {
                gchar* const shown = g_variant_print(values, FALSE);
                tell({{"event", name}, {"path", path}, {"values", shown}});
                g_free(shown);
            },
            nullptr, nullptr);
    }

    // Answers arrive in the main loop; `finish_` is called when none is awaited any more.
    void ask(const std::string& path, const std::string& interface, const char* method,
             GVariant* arguments, Answer answer) {
        ++awaited_;
        g_dbus_connection_call(
            bus_, page_.c_str(), path.c_str(), interface.c_str(), method, arguments, nullptr,
            G_DBUS_CALL_FLAGS_NONE, patience, nullptr,
            [](GObject* bus, GAsyncResult* result, gpointer data) {
                const std::unique_ptr<Question> question(static_cast<Question*>(data));
                GVariant* const reply =
                    g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, nullptr);
                if (reply != nullptr) {
                    question->answer(reply);
                    g_variant_unref(reply);
                }
                Reader& reader = *question->reader;
                if (--reader.awaited_ == 0) reader.finish_();
            },
            new Question{this, std::move(answer)});
    }

    void askProperties(const std::string& path, const std::string& interface, Answer answer) {
        ask(path, "org.freedesktop.DBus.Properties", "GetAll",
            g_variant_new("(s)", (atspi + interface).c_str()), std::move(answer));
    }

    // The engine's process for the page is on the bus; the toolkits of today's stable systems do
    // not yet hang its objects into the window's.
    std::string findPage() {
        GVariant* const names = callOnce(bus_, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                         "org.freedesktop.DBus", "ListNames");
        GVariant* const list = g_variant_get_child_value(names, 0);
        for (gsize index = 0; index < g_variant_n_children(list); ++index) {
            const std::string name = text(list, index);
            if (!name.starts_with(":")) continue;
            GVariant* const told =
                callOnce(bus_, name, pages, "org.freedesktop.DBus.Introspectable", "Introspect");
            if (told == nullptr) continue;
            const std::string xml = text(told, 0);
            const std::string start = "<node name=\"";
            const auto found = xml.find(start);
            if (found == std::string::npos) continue;
            const auto from = found + start.size();
            page_ = name;
            return pages + "/" + xml.substr(from, xml.find('"', from) - from);
        }
        return "";
    }

    void readTree(const std::string& from) {
        const std::string path = from.empty() ? findPage() : from;
        if (path.empty()) {
            tell({{"tree", nullptr}});
            return;
        }
        objects_.clear();
        finish_ = [this, path] { tell({{"tree", built(path)}}); };
        read(path);
    }

    void read(const std::string& path) {
        if (!objects_.emplace(path, json{{"path", path}, {"name", ""}}).second) return;
        const std::string accessible = atspi + "Accessible";
        const auto object = [this, path]() -> json& { return objects_.at(path); };
        ask(path, accessible, "GetRole", nullptr, [object](GVariant* reply) {
            guint32 role = 0;
            g_variant_get(reply, "(u)", &role);
            object()["role"] = role;
        });
        ask(path, accessible, "GetRoleName", nullptr,
            [object](GVariant* reply) { object()["roleName"] = text(reply, 0); });
        ask(path, accessible, "GetLocalizedRoleName", nullptr, [](GVariant*) {});
        ask(path, accessible, "GetRelationSet", nullptr, [](GVariant*) {});
        ask(path, accessible, "GetState", nullptr, [object](GVariant* reply) {
            std::vector<int> states;
            GVariant* const words = g_variant_get_child_value(reply, 0);
            for (gsize word = 0; word < g_variant_n_children(words); ++word) {
                guint32 bits = 0;
                g_variant_get_child(words, word, "u", &bits);
                for (int bit = 0; bit < 32; ++bit)
                    if ((bits >> bit & 1U) != 0)
                        states.push_back(static_cast<int>(word) * 32 + bit);
            }
            g_variant_unref(words);
            object()["states"] = states;
        });
        ask(path, accessible, "GetAttributes", nullptr, [object](GVariant* reply) {
            GVariantIter* pairs = nullptr;
            g_variant_get(reply, "(a{ss})", &pairs);
            const char* key = nullptr;
            const char* value = nullptr;
            while (g_variant_iter_next(pairs, "{&s&s}", &key, &value))
                object()["attributes"][key] = value;
            g_variant_iter_free(pairs);
        });
        askProperties(path, "Accessible", [object](GVariant* reply) { keep(object(), reply); });
        ask(path, accessible, "GetInterfaces", nullptr, [this, path](GVariant* reply) {
            GVariant* const names = g_variant_get_child_value(reply, 0);
            for (gsize index = 0; index < g_variant_n_children(names); ++index)
                readMore(path, text(names, index));
            g_variant_unref(names);
        });
        ask(path, accessible, "GetChildren", nullptr, [this, path](GVariant* reply) {
            GVariant* const children = g_variant_get_child_value(reply, 0);
            json list = json::array();
            for (gsize index = 0; index < g_variant_n_children(children); ++index) {
                const char* bus = nullptr;
                const char* child = nullptr;
                g_variant_get_child(children, index, "(&s&o)", &bus, &child);
                list.push_back(child);
                read(child);
            }
            g_variant_unref(children);
            objects_.at(path)["children"] = std::move(list);
        });
    }

    void readMore(const std::string& path, const std::string& interface) {
        const auto object = [this, path]() -> json& { return objects_.at(path); };
        const std::string kind = interface.substr(interface.rfind('.') + 1);
        object()["interfaces"].push_back(kind);
        if (kind == "Table" || kind == "TableCell" || kind == "Value")
            askProperties(path, kind, [object](GVariant* reply) { keep(object(), reply); });
        if (kind == "Text")
            ask(path, interface, "GetText", g_variant_new("(ii)", 0, -1),
                [object](GVariant* reply) { object()["text"] = text(reply, 0); });
    }

    // Texts and numbers of a dictionary of properties, by their names with a small first letter.
    static void keep(json& object, GVariant* reply) {
        GVariantIter* pairs = nullptr;
        g_variant_get(reply, "(a{sv})", &pairs);
        const char* key = nullptr;
        GVariant* value = nullptr;
        while (g_variant_iter_next(pairs, "{&sv}", &key, &value)) {
            std::string name = key;
            name[0] = g_ascii_tolower(name[0]);
            if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING))
                object[name] = g_variant_get_string(value, nullptr);
            else if (g_variant_is_of_type(value, G_VARIANT_TYPE_INT32))
                object[name] = g_variant_get_int32(value);
            g_variant_unref(value);
        }
        g_variant_iter_free(pairs);
    }

    json built(const std::string& path) {
        json object = std::move(objects_.at(path));
        json children = json::array();
        for (const json& child : object.value("children", json::array()))
            if (objects_.contains(child.get<std::string>())) children.push_back(built(child));
        object["children"] = std::move(children);
        objects_.erase(path);
        return object;
    }

    GDBusConnection* bus_ = nullptr;
    std::string page_;
    std::map<std::string, json> objects_;
    int awaited_ = 0;
    std::function<void()> finish_;
};

}  // namespace

int main() {
    struct {
        Reader reader;
        GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    } life;
    using Life = decltype(life);
    GIOChannel* const input = g_io_channel_unix_new(0);
    g_io_add_watch(
        input, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP),
        [](GIOChannel* channel, GIOCondition, gpointer data) -> gboolean {
            auto* const here = static_cast<Life*>(data);
            gchar* line = nullptr;
            gsize end = 0;
            if (g_io_channel_read_line(channel, &line, nullptr, &end, nullptr) !=
                G_IO_STATUS_NORMAL) {
                g_main_loop_quit(here->loop);
                return G_SOURCE_REMOVE;
            }
            here->reader.obey(std::string(line, end));
            g_free(line);
            return G_SOURCE_CONTINUE;
        },
        &life);
    g_main_loop_run(life.loop);
}
