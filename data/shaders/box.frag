// A box of half extents HalfSize about the origin: the inside colour, a border of BorderWidth, and an
// outline smoothed over one pixel.
uniform vec4 InsideColor;
uniform vec4 BorderColor;
uniform float BorderWidth;
uniform float PixelSize;
uniform vec2 HalfSize;

varying vec2 local;

// 0 a half pixel before v reaches 0, 1 a half pixel after.
float Smooth(float width, float v)
{
    return clamp(v / width + 0.5, 0.0, 1.0);
}

void main()
{
    vec2 q = abs(local) - HalfSize;
    // Signed distance to the outline, negative inside.
    float d = length(max(q, 0.0)) + min(max(q.x, q.y), 0.0);
    vec4 color = mix(BorderColor, InsideColor, Smooth(PixelSize, -d - BorderWidth));
    gl_FragColor = vec4(color.rgb, color.a * Smooth(PixelSize, -d));
}
