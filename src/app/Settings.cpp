#include "app/Settings.h"

#include "script/Attributes.h"
#include "script/ClassObject.h"
#include "script/Parser.h"
#include "script/Variable.h"
#include "util/StringUtil.h"

namespace app
{

script::VariablePtr FindSetting(const util::String& dottedName)
{
    if (!script::Parser::Exists())
        return nullptr;
    script::ClassObjectPtr owner = script::Parser::GetInstancePtr()->GetRootClosure();
    std::vector<util::String> parts = util::Split(dottedName, '.');
    for (size_t i = 0; i < parts.size(); ++i)
    {
        script::VariablePtr var = owner->GetVariable(parts[i]);
        if (!var || i + 1 == parts.size())
            return var;
        owner = util::dynamic_pointer_cast<script::ClassObject>(var->GetObject());
        if (!owner)
            return nullptr;
    }
    return nullptr;
}

namespace
{
template <class T> bool ResetAs(const script::VariablePtr& var)
{
    auto* attrib = dynamic_cast<script::TAttrib<T>*>(var.get());
    if (!attrib)
        return false;
    attrib->SetToDefault();
    return true;
}
} // namespace

void ResetSettingToDefault(const util::String& dottedName)
{
    script::VariablePtr var = FindSetting(dottedName);
    if (!var)
        return;
#define QLEX_RESET_AS(T)                                                                                     \
    if (ResetAs<T>(var))                                                                                     \
        return;
    QLEX_ATTRIB_TYPES(QLEX_RESET_AS)
#undef QLEX_RESET_AS
}

} // namespace app
