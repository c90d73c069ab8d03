#include "util/Profiler.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <limits>

namespace util
{
namespace
{

const char* const MISSING_TIME = "MISSING TIME";
const char* const ROOT_NAME = "Main";
const int MAX_CHILDREN = 8;

String Format(const char* format, ...) __attribute__((format(printf, 1, 2)));
String Format(const char* format, ...)
{
    char buffer[512];
    va_list args;
    va_start(args, format);
    const int n = std::vsnprintf(buffer, sizeof(buffer), format, args);
    va_end(args);
    return String(buffer, size_t(std::clamp(n, 0, int(sizeof(buffer)) - 1)));
}

} // namespace

double ProfilerTime()
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

unsigned ProfilerTicks()
{
    using namespace std::chrono;
    // Wraps after 49 days, as a tick counter does; differences of unsigned values stay right across it.
    return unsigned(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

Profiler::Node::~Node()
{
    for (Node* child : children)
        delete child;
    delete missingTime;
}

Profiler::Node* Profiler::Node::GetChild(const char* childName)
{
    for (Node* child : children)
    {
        if (child->name == childName)
            return child;
    }
    if (int(children.size()) > MAX_CHILDREN)
        Profiler::GetInstancePtr()->SetError(String("Too many children of node ") + name);
    children.push_back(new Node(childName, this));
    return children.back();
}

void Profiler::Node::Clear()
{
    spike = total = 0;
    calls = 0;
    for (Node* child : children)
        child->Clear();
    if (missingTime)
        missingTime->Clear();
}

String Profiler::Node::GetOutput(int index, int frames, double elapsed) const
{
    const double ofOwner = parent ? (parent->total != 0 ? 100 * total / parent->total : 0) : 100;
    const double ofAll = 100 * total / elapsed;
    const double perFrame = total / frames * 1000000;
    const char mark = children.empty() ? ' ' : '*';
    const String indexText = index == UNLOGGED ? String(" ") : std::to_string(index);
    String line = Format("%c%s   %25s   %5.1f %%   %5.1f %%     %6.0f", mark, indexText.c_str(), name,
                         ofOwner, ofAll, perFrame);
    if (index != UNLOGGED)
    {
        const double perCall = calls ? total / calls * 1000000 : std::numeric_limits<double>::quiet_NaN();
        line += Format("        %5.0f     %5.0f   %5.1f", spike * 1000000, perCall, double(calls) / frames);
    }
    return line + "\n";
}

Profiler::Profiler()
{
    Reset();
}

Profiler::~Profiler()
{
    delete m_root;
}

void Profiler::Begin(const char* name)
{
    static StaticProfilerData s_timing("Profiler::Begin");
    StaticProfilerScope timing(s_timing);
    m_current = m_current->GetChild(name);
    m_current->start = ProfilerTime();
}

void Profiler::End()
{
    static StaticProfilerData s_timing("Profiler::End");
    StaticProfilerScope timing(s_timing);
    if (m_current == m_root)
    {
        SetError("Too many calls to End()");
        return;
    }
    const double t = ProfilerTime() - m_current->start;
    ++m_current->calls;
    m_current->total += t;
    m_current->spike = std::max(m_current->spike, t);
    m_current = m_current->parent;
}

void Profiler::Update()
{
    if (m_error || !m_active)
        return;
    if (m_current != m_root)
    {
        SetError("Profiler::Update() called within begin and end (fix code)");
        return;
    }
    ++m_frames;
    const double now = ProfilerTime();
    m_root->spike = std::max(m_root->spike, now - m_root->start);
    m_root->start = now;
    const double elapsed = now - m_lastOutput;
    if ((elapsed > 0 && elapsed >= m_outputInterval) || m_force)
        UpdateOutput(elapsed);
}

void Profiler::UpdateOutput(double elapsed)
{
    m_root->total = elapsed;
    String text = Format("FPS: %04.2f", m_frames / elapsed) + "\n\n";
    text += String("Profile data for ") + m_viewed->name + "\n\n";
    text += String(MaxNameLength, ' ') + " Name" + "   %owner" + "    %total" + "   \xB5s/frame" +
            "  frame-spike" + "   \xB5s/call" + "   calls/frame" + "\n\n";
    double childTotal = 0;
    for (size_t i = 0; i < m_viewed->children.size(); ++i)
    {
        text += m_viewed->children[i]->GetOutput(int(i), m_frames, elapsed);
        childTotal += m_viewed->children[i]->total;
    }
    if (!m_viewed->children.empty() && !m_viewed->missingTime)
        m_viewed->missingTime = new Node(MISSING_TIME, m_viewed);
    if (m_viewed->missingTime)
    {
        m_viewed->missingTime->total = m_viewed->total - childTotal;
        text += m_viewed->missingTime->GetOutput(UNLOGGED, m_frames, elapsed);
    }
    m_output = text;
    Clear();
}

void Profiler::Clear()
{
    m_root->Clear();
    m_frames = 0;
    m_lastOutput = ProfilerTime();
    m_root->start = m_lastOutput;
    m_force = false;
}

void Profiler::Reset()
{
    delete m_root;
    m_outputInterval = 1.0;
    m_frames = 0;
    m_active = false;
    m_error = false;
    m_output = "No output generated yet.";
    m_force = true;
    m_root = new Node(ROOT_NAME, nullptr);
    m_root->start = ProfilerTime();
    m_current = m_viewed = m_root;
}

void Profiler::SetActive(bool active)
{
    if (active && !m_active)
    {
        m_active = true;
        Clear();
        return;
    }
    m_active = active;
    if (!active)
        m_output = "Unactive";
}

String Profiler::GetOutput() const
{
    return m_active ? m_output : String("Not active.");
}

void Profiler::SetError(const String& text)
{
    m_error = true;
    m_output = "ERROR: " + text + "\n" + "This problem must be fixed before any profiling can be done.";
}

bool Profiler::OnKeyPress(int keyCode)
{
    const int KEY_MINUS = 269, KEY_PERIOD = 266, KEY_0 = 256, KEY_9 = 265, KEY_ENTER = 271;
    if (keyCode == KEY_MINUS)
    {
        SetActive(!m_active);
        m_force = true;
        return true;
    }
    if (!m_active)
        return false;
    bool handled = false;
    if (keyCode == KEY_PERIOD)
    {
        if (m_viewed->parent)
            m_viewed = m_viewed->parent;
        handled = true;
    }
    else if (keyCode >= KEY_0 && keyCode <= KEY_9)
    {
        const size_t index = size_t(keyCode - KEY_0);
        if (index < m_viewed->children.size() && !m_viewed->children[index]->children.empty())
            m_viewed = m_viewed->children[index];
        handled = true;
    }
    else if (keyCode == KEY_ENTER)
    {
        if (!m_viewed->children.empty())
        {
            Node* heaviest =
                *std::max_element(m_viewed->children.begin(), m_viewed->children.end(),
                                  [](const Node* a, const Node* b) { return a->total < b->total; });
            if (!heaviest->children.empty())
                m_viewed = heaviest;
        }
        handled = true;
    }
    m_force = handled;
    return handled;
}

StaticProfilerData::StaticProfilerData(const String& name) : name(name)
{
    Profiler2::GetInstancePtr()->Add(this);
}

void StaticProfilerData::End(unsigned startTicks)
{
    const unsigned t = ProfilerTicks() - startTicks;
    thisFrame += t;
    callSpike = std::max(callSpike, t);
    ++calls;
}

void Profiler2::Update(double dt)
{
    m_time += dt;
    ++m_frames;
    for (StaticProfilerData* data : m_data)
    {
        data->total += data->thisFrame;
        data->frameSpike = std::max(data->frameSpike, data->thisFrame);
        data->thisFrame = 0;
    }
    if (m_time >= m_outputInterval || (m_force && m_time > 0))
    {
        UpdateOutput();
        Reset();
    }
}

void Profiler2::UpdateOutput()
{
    std::sort(m_data.begin(), m_data.end(), ProfilerComp());
    const double frames = m_frames;
    String text = Format("FPS: %04.2f", frames / m_time) + "\n\n";
    text += String(MaxNameLength - 5, ' ') + " Name" + "   %total" + "   \xB5s/frame" + "  frame-spike" +
            "  call-spike" + "   \xB5s/call" + "   calls/frame" + "\n\n";
    for (const StaticProfilerData* data : m_data)
    {
        const double total = data->total;
        const double perCall =
            data->calls ? total * 1000 / data->calls : std::numeric_limits<double>::quiet_NaN();
        text += Format("%32s  %5.1f %%     %6.0f     %5.0f ms    %5.0f ms     %5.0f   %7.1f",
                       data->name.c_str(), total / 1000 * 100 / m_time, total * 1000 / frames,
                       double(data->frameSpike), double(data->callSpike), perCall, data->calls / frames) +
                "\n";
    }
    m_output = text;
}

void Profiler2::Clear()
{
    m_frames = 0;
    m_time = 0;
    for (StaticProfilerData* data : m_data)
        data->Clear();
}

void Profiler2::Reset()
{
    Clear();
    m_force = false;
}

void Profiler2::SetActive(bool active)
{
    if (active && !m_active)
        Clear();
    m_active = active;
    if (!active)
        m_output = "Unactive";
}

bool Profiler2::OnKeyPress(int keyCode)
{
    const int KEY_MULTIPLY = 268;
    if (keyCode != KEY_MULTIPLY)
        return false;
    SetActive(!m_active);
    m_force = true;
    return true;
}

} // namespace util
