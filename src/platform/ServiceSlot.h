#pragma once

#include <memory>

// The one installed implementation of a platform service. Until a program or
// a test installs its own, the first use makes a Default.
template <class Interface, class Default>
class ServiceSlot {
  public:
    static Interface& Instance() {
        auto& Service = Current();
        if (!Service) {
            Service = std::make_unique<Default>();
        }
        return *Service;
    }

    // Takes ownership; returns the one installed before.
    static std::unique_ptr<Interface> Install(std::unique_ptr<Interface> Service) {
        auto Old = std::move(Current());
        Current() = std::move(Service);
        return Old;
    }

  private:
    static std::unique_ptr<Interface>& Current() {
        static std::unique_ptr<Interface> Service;
        return Service;
    }
};
