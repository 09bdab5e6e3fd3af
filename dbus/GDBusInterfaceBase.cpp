#include "GDBusInterfaceBase.h"

GDBusInterfaceBase::GDBusInterfaceBase(GTypeInstance* adaptor) : mAdaptor(adaptor)
{
}

GDBusInterfaceBase::~GDBusInterfaceBase() = default;

void GDBusInterfaceBase::configure(int, char**)
{
}

GTypeInstance* GDBusInterfaceBase::getAdaptor()
{
    return mAdaptor;
}
