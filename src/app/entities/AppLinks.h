#pragma once
// INTERIM: the three services of app::App that entities use (border colour, random entity colour and
// mirror requests) are reached through here, so that entities build against an application root that
// doesn't offer them yet. Each forwards to app::App when it has the member, and otherwise does what the
// application root is to do. Delete this file, and call app::App directly, once App has all three.

#include "app/App.h"
#include "app/Background.h"
#include "app/entities/Entity.h"
#include "util/ColorUtil.h"
#include "util/Random.h"

#include <cmath>
#include <type_traits>
#include <utility>

namespace app::links
{
template <class A, class = void> struct HasBorderColor : std::false_type
{
};
template <class A>
struct HasBorderColor<A,
                      std::void_t<decltype(std::declval<const A&>().GetBorderColor((const Entity*)nullptr))>>
    : std::true_type
{
};
template <class A, class = void> struct HasRandomEntityColor4 : std::false_type
{
};
template <class A>
struct HasRandomEntityColor4<A, std::void_t<decltype(std::declval<A&>().RandomEntityColor4())>>
    : std::true_type
{
};
template <class A, class = void> struct HasMirrorMe : std::false_type
{
};
template <class A>
struct HasMirrorMe<A, std::void_t<decltype(std::declval<A&>().MirrorMe(
                          std::declval<input::ButtonInput>(), std::declval<EntityPtr>()))>> : std::true_type
{
};

// White when selected, light grey when also marked, dark grey when marked only; else half the colour.
template <class A = App> math::Vec4 BorderColor(const Entity* entity)
{
    if constexpr (HasBorderColor<A>::value)
        return A::GetInstancePtr()->GetBorderColor(entity);
    else
    {
        const math::Vec4& c = entity->m_color;
        if (entity->m_selectedLook)
            return entity->m_markedLook ? math::Vec4(0.8f, 0.8f, 0.8f, 1) : math::Vec4(1, 1, 1, 1);
        if (entity->m_markedLook)
            return math::Vec4(0.2f, 0.2f, 0.2f, 1);
        return math::Vec4(c.x / 2, c.y / 2, c.z / 2, c.w);
    }
}

// A new shape is never too dark, nor too near the sky's colour, to be seen.
const float MIN_INTENSITY = 0.05f;
const float MIN_SKY_DISTANCE = 0.1f;

// A colour of even spread over the colour disc, lightness biased to the middle.
template <class A = App> math::Vec4 RandomEntityColor4()
{
    if constexpr (HasRandomEntityColor4<A>::value)
        return A::GetInstancePtr()->RandomEntityColor4();
    else
    {
        static util::Random random;
        math::Vec3 c;
        do
        {
            float lightness = std::pow(random.GetUniform(0, 1), 1.0f / 3.0f) / 2;
            if (random.GetUniformInt(0, 2) == 1)
                lightness = 1 - lightness;
            const math::Vec2 p = random.GetPointInCircle(1.0f);
            const float hue = (p.x == 0 && p.y == 0) ? 0.0f : std::atan2(p.y, p.x) * 180.0f / math::PIf;
            c = util::HSL2RGB(hue, p.Length(), lightness);
        } while (util::RGBIntensity(c) < MIN_INTENSITY ||
                 (A::Exists() &&
                  math::Distance(c, A::GetInstancePtr()->GetBackground().GetSkyColor()) < MIN_SKY_DISTANCE));
        return math::Vec4(c.x, c.y, c.z, 1.0f);
    }
}

template <class A = App> void MirrorMe(const input::ButtonInput& button, const EntityPtr& entity)
{
    if constexpr (HasMirrorMe<A>::value)
        A::GetInstancePtr()->MirrorMe(button, entity);
    else
        (void)button, (void)entity;
}
} // namespace app::links
