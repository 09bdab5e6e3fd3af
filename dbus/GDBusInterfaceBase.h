#pragma once

#include <glib-object.h>

// Base of every object the service publishes on the bus: it holds the
// generated interface skeleton and knows how to wire the skeleton's method
// signals to its own handlers. The skeleton lives as long as the process.
class GDBusInterfaceBase
{
public:
    explicit GDBusInterfaceBase(GTypeInstance* adaptor);
    virtual ~GDBusInterfaceBase();
    GDBusInterfaceBase(const GDBusInterfaceBase&) = delete;
    GDBusInterfaceBase& operator=(const GDBusInterfaceBase&) = delete;

    // Connects one handler per method; called just before the export.
    virtual void connect_methods() = 0;
    // Lets an object set itself up from the command line once the bus name
    // is owned and every object is exported; most objects need nothing.
    virtual void configure(int argc, char** argv);

    GTypeInstance* getAdaptor();

private:
    GTypeInstance* mAdaptor;
};
