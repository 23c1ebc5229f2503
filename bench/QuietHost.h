#pragma once

#include <string>

#include "framework/IDriverHost.h"
#include "host/IInstanceManager.h"

/// A host that does nothing, so that only the agent's own work is measured.
class QuietHost final : public vx::IDriverHost, public IInstanceManager {
 public:
  int RegisterQuery(const char*, void*) override { return 1; }
  void UnregisterQuery(const char*) override {}
  void* FindQuery(const char*) override { return nullptr; }
  vx::IDriverHost& DriverHost() override { return *this; }

  unsigned long AddTimer(VxBaseDriver&, unsigned long, unsigned int) override { return 1; }
  void KillTimer(VxBaseDriver&, unsigned long) override {}
  void VmRegisterListener(VxBaseDriver&, unsigned long device, unsigned long variable,
                          IVariableCallback& listener) override {
    listener.OnVariableChanged(device, variable, variable == 1001 ? "40.7" : "-74.0");
  }
  void VmUnregisterListener(VxBaseDriver&, unsigned long, unsigned long,
                            IVariableCallback&) override {}
  int RegisterBinding(VxBaseDriver&, unsigned long, int, const std::string&) override { return 0; }
  void RegisterBindingClass(VxBaseDriver&, unsigned long, const std::string&) override {}
  void UnregisterBinding(VxBaseDriver&, unsigned long) override {}
  void FireEvent(VxBaseDriver&, unsigned long) override {}
  vx::auto_com<IBindMessage> CreateBindMessage(VxBaseDriver&) override { return nullptr; }
  void SendBoundCall(VxBaseDriver&, unsigned long, const IBindMessage&, ICmdReturn*) override {}
  void ConSendDataToUI(VxBaseDriver&, const VxXML::INode&) override {}
  void DmInvalidateState(VxBaseDriver&) override {}
  void EmRemoveByOwner(VxBaseDriver&, unsigned long, int) override {}
  void LogMessage(VxBaseDriver&, unsigned int, const char*) override {}
};
