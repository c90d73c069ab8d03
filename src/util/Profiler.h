#pragma once

#include "util/SharedPtr.h"
#include "util/Singleton.h"
#include "util/String.h"
#include "util/VectorPOD.h"

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
// Whole milliseconds from a monotonic clock, the unit of the flat profiler.
unsigned ProfilerTicks();

// The counters of one timed function, in whole milliseconds: a function-local static that joins the flat
// profiler when it is made and lives to the end of the process.
class StaticProfilerData
{
public:
    explicit StaticProfilerData(const String& name);
    StaticProfilerData(const StaticProfilerData&) = delete;
    StaticProfilerData& operator=(const StaticProfilerData&) = delete;

    // Closes one run that began at startTicks (ProfilerTicks).
    void End(unsigned startTicks);
    void Clear() { total = thisFrame = callSpike = frameSpike = calls = 0; }

    String name;
    unsigned total = 0;
    unsigned thisFrame = 0;
    unsigned callSpike = 0;
    unsigned frameSpike = 0;
    unsigned calls = 0;
};

// Times one run of a function under its static data for as long as it lives.
class StaticProfilerScope
{
public:
    explicit StaticProfilerScope(StaticProfilerData& data) : m_data(data), m_start(ProfilerTicks()) {}
    ~StaticProfilerScope() { m_data.End(m_start); }
    StaticProfilerScope(const StaticProfilerScope&) = delete;
    StaticProfilerScope& operator=(const StaticProfilerScope&) = delete;

private:
    StaticProfilerData& m_data;
    unsigned m_start;
};

// The order of the flat profiler's table: ascending by name.
struct ProfilerComp
{
    bool operator()(const StaticProfilerData* a, const StaticProfilerData* b) const
    {
        return a->name < b->name;
    }
};

// A flat list of timed functions, each with its static data; its table is shown over the scene in place of
// the tree's when only this one is on.
class Profiler2 : public Pointee, public Singleton<Profiler2>
{
public:
    static constexpr int MaxNameLength = 32;

    void Add(StaticProfilerData* data) { m_data.push_back(data); }
    // Once a frame, outside any scope, with the frame's length in seconds.
    void Update(double dt);
    void Clear();
    void Reset();
    void SetActive(bool active);
    bool IsActive() const { return m_active; }
    String GetOutput() const { return m_active ? m_output : String("Not active."); }

    // The multiply key of the numeric pad toggles the table; returns whether the key was used.
    bool OnKeyPress(int keyCode);

    const VectorPOD<StaticProfilerData*>& GetData() const { return m_data; }

private:
    void UpdateOutput();

    VectorPOD<StaticProfilerData*> m_data;
    bool m_active = false;
    double m_outputInterval = 1.0;
    int m_frames = 0;
    double m_time = 0;
    String m_output = "No output generated yet.";
    bool m_force = false;
};

} // namespace util
