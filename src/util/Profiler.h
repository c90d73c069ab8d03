#pragma once

#include "util/SharedPtr.h"
#include "util/Singleton.h"
#include "util/String.h"

#include <vector>

namespace util
{

// A tree of named scopes timed while the program runs; its table is shown over the scene. Scope names are
// string literals and are compared by pointer, so Begin and End allocate nothing once a node exists.
class Profiler : public Pointee, public Singleton<Profiler>
{
public:
    static constexpr int UNLOGGED = -1;
    static constexpr int MaxNameLength = 25;

    struct Node
    {
        Node(const char* name, Node* parent) : name(name), parent(parent) {}
        ~Node();

        Node* GetChild(const char* childName);
        String GetOutput(int index, int frames, double elapsed) const;
        void Clear();

        const char* name;
        Node* parent;
        std::vector<Node*> children;
        Node* missingTime = nullptr;
        double spike = 0;
        double total = 0;
        int calls = 0;
        double start = 0;
    };

    Profiler();
    ~Profiler() override;

    void Begin(const char* name);
    void End();
    void Update();
    void Clear();
    void Reset();
    void SetActive(bool active);
    bool IsActive() const { return m_active; }
    String GetOutput() const;
    void SetError(const String& text);

    // The numeric pad walks the tree; returns whether the key was used. Key codes are SDL's.
    bool OnKeyPress(int keyCode);

    const Node* GetRoot() const { return m_root; }

private:
    void UpdateOutput(double elapsed);

    double m_outputInterval = 1.0;
    double m_lastOutput = 0;
    int m_frames = 0;
    bool m_active = false;
    Node* m_root = nullptr;
    Node* m_current = nullptr;
    Node* m_viewed = nullptr;
    String m_output = "No output generated yet.";
    bool m_error = false;
    bool m_force = true;
};

// Marks a named stage of the frame or of a physics step for as long as it lives.
class ScopeProfiler
{
public:
    explicit ScopeProfiler(const char* name) { Profiler::GetInstancePtr()->Begin(name); }
    ~ScopeProfiler() { Profiler::GetInstancePtr()->End(); }
    ScopeProfiler(const ScopeProfiler&) = delete;
    ScopeProfiler& operator=(const ScopeProfiler&) = delete;
};

// Seconds from a monotonic clock.
double ProfilerTime();

} // namespace util
