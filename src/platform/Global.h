#pragma once

// One process-wide instance of a window or object, created at its first use.
// Get() creates it if needed, Unload() destroys it (the next Get() makes a
// fresh one), IsLoaded() asks without creating. This is how "set to nothing"
// and "first use loads the form" are expressed.
template <class T>
class Global {
  public:
    static T& Get() {
        T*& Ref = Slot();
        if (Ref == nullptr) {
            Ref = new T();
        }
        return *Ref;
    }

    static bool IsLoaded() { return Slot() != nullptr; }

    static void Unload() {
        T*& Ref = Slot();
        T* Old = Ref;
        // Cleared first, so that code run by the destructor sees it unloaded.
        Ref = nullptr;
        delete Old;
    }

    // Gives the instance up without destroying it, for a window that unloads
    // itself from one of its own events and must be deleted later.
    static T* Release() {
        T*& Ref = Slot();
        T* Old = Ref;
        Ref = nullptr;
        return Old;
    }

    // A window that unloads itself from one of its own events: given up now
    // and deleted once the event is over. Another instance is left alone.
    static void UnloadLater(T* Window) {
        if (Window != nullptr && Slot() == Window) {
            Slot() = nullptr;
            Window->deleteLater();
        }
    }

    // From the destructor of a window that its owner deletes: the next use
    // makes a fresh one.
    static void Forget(const T* Window) {
        if (Slot() == Window) {
            Slot() = nullptr;
        }
    }

  private:
    static T*& Slot() {
        static T* Instance = nullptr;
        return Instance;
    }
};
