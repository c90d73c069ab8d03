#pragma once
// "Keys" of the scripts: button combinations tied to script functions.
//
//     Keys.bind("left_ctrl a", {Sim.running = !Sim.running});
//     Keys.unbind("left_ctrl a");
//
// The bindings are saved with the configuration as the very statements that made them, and read back by
// running those. The binder sits above the script library, in a library of its own, since it holds
// combinations of keys; the programs put it under the script root.

#include "input/ButtonInput.h"
#include "script/Attributes.h"
#include "script/Reflected.h"
#include "util/HashMap.h"

#include <set>
#include <utility>
#include <vector>

namespace script
{

class KeyBinder : public Reflected, public PokeMeOncePerFrame
{
public:
    typedef util::HashMap<input::ButtonInput, util::SharedPtr<AbstractFunction>, input::ButtonInput::Hasher>
        BindingMap;

    KeyBinder();
    ~KeyBinder() override;

    // The combination's text form, then a function of no arguments: "Bad button" for a text that names no
    // key, "The second argument should be a function taking no arguments" for anything else. Binding a
    // combination again replaces its function.
    void Bind(ObjectPtr combination, ObjectPtr function);
    // An unknown combination is no error.
    void Unbind(ObjectPtr combination);

    // Runs the function bound to the button. A missing binding or a failing function is a warning: the
    // binding stays, and the next press runs it again.
    void OnButtonPress(const input::ButtonInput& button);

    // One "Keys.bind(...)" statement per binding that can be written as text.
    ExpressionPtr ToExpression() const override;
    // Carries out what a bound function asked of the table while it ran.
    void Poke() override;

    const BindingMap& GetBindings() const { return m_bindings; }

private:
    // The combination named by a script value; throws "Bad button" for one without keys.
    static input::ButtonInput ToButton(const ObjectPtr& combination);
    // The press callback holds the keys, the toggle flag and the text of its combination, not a copy of
    // the button, which would be a second watcher of the keys. `text` names it in warnings.
    void OnPress(const std::set<SDLKey>& keys, bool toggle, const util::String& text);
    util::SharedPtr<AbstractFunction>* Find(const std::set<SDLKey>& keys, bool toggle);
    // Adds or (with a null function) erases an entry of the table.
    void Apply(const input::ButtonInput& button, const util::SharedPtr<AbstractFunction>& function);

    BindingMap m_bindings;
    // A bound function runs inside the press callbacks of its button: while it does, a new entry (which
    // may grow the table and so move every button) or an erased one (which ends the button) waits here
    // for the next frame, and an unbound one does nothing meanwhile.
    unsigned m_pressing = 0;
    std::vector<std::pair<input::ButtonInput, util::SharedPtr<AbstractFunction>>> m_pending;
};

} // namespace script
