#include "script/KeyBinder.h"

#include "logging/Log.h"
#include "script/EvalGuard.h"
#include "script/Expressions.h"

namespace script
{

namespace
{
const char* const NAME = "Keys";

// Counts a bound function's run for as long as it lasts, whatever way it ends.
class PressCount
{
public:
    explicit PressCount(unsigned& count) : m_count(count) { ++m_count; }
    ~PressCount() { --m_count; }
    PressCount(const PressCount&) = delete;
    PressCount& operator=(const PressCount&) = delete;

private:
    unsigned& m_count;
};

util::String FailureStart(const util::String& text)
{
    return "Button combination \"" + text + "\"";
}
} // namespace

KeyBinder::KeyBinder() : Reflected(NAME)
{
    AddVoidCmd2("bind", [this](ObjectPtr combination, ObjectPtr function) { Bind(combination, function); });
    AddVoidCmd1("unbind", [this](ObjectPtr combination) { Unbind(combination); });
}

KeyBinder::~KeyBinder() = default;

input::ButtonInput KeyBinder::ToButton(const ObjectPtr& combination)
{
    input::ButtonInput button;
    button.Deserialize(ObjectToValue<util::String>(combination));
    if (!button.IsBound())
        QLEX_THROW(ScriptException("Bad button"));
    return button;
}

void KeyBinder::Bind(ObjectPtr combination, ObjectPtr function)
{
    input::ButtonInput button = ToButton(combination);
    util::SharedPtr<AbstractFunction> command = util::dynamic_pointer_cast<AbstractFunction>(function);
    if (!command || command->GetArgCount() != 0)
        QLEX_THROW(ScriptException("The second argument should be a function taking no arguments"));
    if (util::SharedPtr<AbstractFunction>* bound = m_bindings.TryGet(button))
    {
        *bound = command;
        return;
    }
    if (m_pressing > 0)
        m_pending.emplace_back(button, command);
    else
        Apply(button, command);
}

void KeyBinder::Unbind(ObjectPtr combination)
{
    const input::ButtonInput button = ToButton(combination);
    if (m_pressing == 0)
    {
        Apply(button, nullptr);
        return;
    }
    if (util::SharedPtr<AbstractFunction>* bound = m_bindings.TryGet(button))
        *bound = nullptr;
    m_pending.emplace_back(button, nullptr);
}

void KeyBinder::Apply(const input::ButtonInput& combination,
                      const util::SharedPtr<AbstractFunction>& function)
{
    if (!function)
    {
        m_bindings.erase(combination);
        return;
    }
    if (util::SharedPtr<AbstractFunction>* bound = m_bindings.TryGet(combination))
    {
        *bound = function;
        return;
    }
    input::ButtonInput button = combination;
    const std::set<SDLKey> keys = button.GetKeySet();
    const bool toggle = button.GetToggle();
    const util::String text = button.Serialize();
    button.AddOnPressCallback(
        QLEX_NEW new util::Callback([this, keys, toggle, text] { OnPress(keys, toggle, text); }, this));
    m_bindings.Insert(button, function);
}

void KeyBinder::Poke()
{
    if (m_pressing > 0 || m_pending.empty())
        return;
    std::vector<std::pair<input::ButtonInput, util::SharedPtr<AbstractFunction>>> pending;
    pending.swap(m_pending);
    for (const auto& change : pending)
        Apply(change.first, change.second);
}

util::SharedPtr<AbstractFunction>* KeyBinder::Find(const std::set<SDLKey>& keys, bool toggle)
{
    for (auto& entry : m_bindings)
    {
        if (entry.first.GetToggle() == toggle && entry.first.GetKeySet() == keys)
            return &entry.second;
    }
    return nullptr;
}

void KeyBinder::OnButtonPress(const input::ButtonInput& button)
{
    OnPress(button.GetKeySet(), button.GetToggle(), button.Serialize());
}

void KeyBinder::OnPress(const std::set<SDLKey>& keys, bool toggle, const util::String& text)
{
    util::SharedPtr<AbstractFunction>* bound = Find(keys, toggle);
    if (!bound || !*bound)
    {
        Log(logging::Warning, FailureStart(text) + " failed to execute its command.");
        return;
    }
    // Held here: the command may unbind itself, or bind its combination anew.
    const util::SharedPtr<AbstractFunction> command = *bound;
    try
    {
        PressCount pressing(m_pressing);
        EvalGuard::Session session;
        command->Call(ObjectList());
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
        Log(logging::Warning, FailureStart(text) + " bound to bad command: " + e.what());
    }
}

ExpressionPtr KeyBinder::ToExpression() const
{
    CodeBlockPtr block = QLEX_NEW new CodeBlock();
    util::SharedPtr<Identifier> self = AsIdentifier();
    ExpressionPtr bind = QLEX_NEW new Identifier(
        self ? ExpressionPtr(self) : ExpressionPtr(QLEX_NEW new Identifier(nullptr, NAME)), "bind");
    for (const auto& entry : m_bindings)
    {
        if (!entry.second)
            continue;
        // A built-in command has no text: its binding lasts for the run only.
        ExpressionPtr function = entry.second->ToExpression();
        if (!function)
            continue;
        CodeBlockPtr args = QLEX_NEW new Block();
        args->Add(QLEX_NEW new Literal<util::String>(entry.first.Serialize()));
        args->Add(function);
        block->Add(QLEX_NEW new FunctionCall(bind, args));
    }
    return block;
}

} // namespace script
