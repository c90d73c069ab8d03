// A sketched shape from its distance texture: the alpha holds (d / DistScale + 1) / 2, so the outline lies
// at 0.5 and the inside below it.
uniform vec4 InsideColor;
uniform vec4 BorderColor;
uniform float BorderWidth;
uniform float PixelSize;
uniform sampler2D DistSampler;
uniform float DistScale;

float Smooth(float width, float v)
{
    return clamp(v / width + 0.5, 0.0, 1.0);
}

void main()
{
    float v = texture2D(DistSampler, gl_TexCoord[0].st).a;
    float d = (v * 2.0 - 1.0) * DistScale;
    vec4 color = mix(BorderColor, InsideColor, Smooth(PixelSize, -d - BorderWidth));
    gl_FragColor = vec4(color.rgb, color.a * Smooth(PixelSize, -d));
}
