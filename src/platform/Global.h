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

  private:
    static T*& Slot() {
        static T* Instance = nullptr;
        return Instance;
    }
};
