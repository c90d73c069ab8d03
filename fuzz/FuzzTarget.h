#pragma once
// One script run under fuzzing conditions, shared by the fuzzer and by the regression test that replays
// the inputs the fuzzer once broke on.

#include "logging/Log.h"
#include "script/AttribWrapper.h"
#include "script/EvalGuard.h"
#include "script/Parser.h"
#include "script/Variable.h"

#include <set>
#include <string>

namespace qlex_fuzz
{

// Attributes of every type, so that inputs can bind and break them.
class Target : public script::Reflected
{
public:
    Target()
        : script::Reflected("Fuzz"), b(this, "b", true), i(this, "i", 1), u(this, "u", 2UL),
          f(this, "f", 1.5f), s(this, "s", std::string("s")), v2(this, "v2", math::Vec2(1, 2)),
          v3(this, "v3", math::Vec3(1, 2, 3)), v4(this, "v4", math::Vec4(1, 2, 3, 4)),
          iv(this, "iv", math::TVector2<int>(1, 2)),
          outside(
              this, "outside", [this] { return m_outside; }, [this](const float& x) { m_outside = x; })
    {
        AddVoidCmd1("eval", [](script::ObjectPtr text)
                    { script::Parser::GetInstancePtr()->Execute(script::ObjectToValue<std::string>(text)); });
    }

    script::AttribWrapper<bool> b;
    script::AttribWrapper<int> i;
    script::AttribWrapper<unsigned long> u;
    script::AttribWrapper<float> f;
    script::AttribWrapper<std::string> s;
    script::AttribWrapper<math::Vec2> v2;
    script::AttribWrapper<math::Vec3> v3;
    script::AttribWrapper<math::Vec4> v4;
    script::AttribWrapper<math::TVector2<int>> iv;
    float m_outside = 0.0f;
    script::AttribWrapper<float> outside;
};

// Work units an input may spend: enough for any short text, small enough to keep each run quick.
const unsigned long FUZZ_STEP_BUDGET = 50000;

// What the parser holds before any input: everything added later is taken away after each run.
struct ParserState
{
    std::set<std::string> rootNames;
    size_t rootScopeInfixes = 0;
    size_t rootClosureInfixes = 0;
};

inline ParserState CaptureState(script::Parser& parser)
{
    ParserState state;
    for (const script::VariablePtr& var : parser.GetRootClosure()->GetVariables())
        state.rootNames.insert(var->GetName());
    state.rootScopeInfixes = parser.GetRootScope()->GetInfixes().size();
    state.rootClosureInfixes = parser.GetRootClosure()->GetInfixes().size();
    return state;
}

inline void RestoreState(script::Parser& parser, const ParserState& state)
{
    script::ClosurePtr root = parser.GetRootClosure();
    for (const script::VariablePtr& var : root->GetVariables())
    {
        if (!state.rootNames.count(var->GetName()))
            root->RemoveVariable(var->GetName());
    }
    while (parser.GetRootScope()->GetInfixes().size() > state.rootScopeInfixes)
        parser.GetRootScope()->RemoveInfix(parser.GetRootScope()->GetInfixes().back());
    while (root->GetInfixes().size() > state.rootClosureInfixes)
        root->RemoveInfix(root->GetInfixes().back());
    parser.Update();
    logging::Logger::GetInstancePtr()->Update();
    logging::Logger::GetInstancePtr()->Update();
    util::PointeeHandle::Flush();
}

// Runs `text` as the console would, then the frame's update and a save of the whole namespace, with a
// reflected object of every attribute type in the root.
inline void RunScript(script::Parser& parser, const std::string& text)
{
    util::SharedPtr<Target> target = QLEX_NEW new Target();
    parser.GetRootClosure()->AddReflectedChild(target);
    parser.ExecuteToString(text);
    parser.Update();
    parser.ToCode();
    parser.GetRootClosure()->RemoveVariable("Fuzz");
}

} // namespace qlex_fuzz
