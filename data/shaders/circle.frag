// A disc of Radius with a border, and a slice of the border colour about the local x axis that shows the
// rotation: CakeSize is the slice's half angle as a share of pi.
uniform vec4 InsideColor;
uniform vec4 BorderColor;
uniform vec4 CakeSlizeColor;
uniform float BorderWidth;
uniform float PixelSize;
uniform float Radius;
uniform float CakeSize;

varying vec2 local;

const float PI = 3.14159265;

float Smooth(float width, float v)
{
    return clamp(v / width + 0.5, 0.0, 1.0);
}

void main()
{
    float r = length(local);
    float d = r - Radius;
    // The angle past the slice's edge times the radius: the distance to that edge along the arc.
    float angle = r > 0.0 ? abs(atan(local.y, local.x)) : PI;
    vec4 inner = mix(CakeSlizeColor, InsideColor, Smooth(PixelSize, (angle - PI * CakeSize) * r));
    vec4 color = mix(BorderColor, inner, Smooth(PixelSize, -d - BorderWidth));
    gl_FragColor = vec4(color.rgb, color.a * Smooth(PixelSize, -d));
}
