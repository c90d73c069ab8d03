// The border band of a half plane: Plane holds the unit normal in xy and the offset in z, so that the
// signed distance of a point p is dot(p, normal) + offset, negative inside.
uniform vec4 InsideColor;
uniform vec4 BorderColor;
uniform float BorderWidth;
uniform float PixelSize;
uniform vec3 Plane;

varying vec2 local;

float Smooth(float width, float v)
{
    return clamp(v / width + 0.5, 0.0, 1.0);
}

void main()
{
    float d = dot(local, Plane.xy) + Plane.z;
    vec4 color = mix(BorderColor, InsideColor, Smooth(PixelSize, -d - BorderWidth));
    gl_FragColor = vec4(color.rgb, color.a * Smooth(PixelSize, -d));
}
