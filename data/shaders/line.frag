// A strip of Width with both edges smoothed over a pixel; the strip is a pixel wider than the line it
// shows, so that the smoothing has room outside it.
uniform vec4 Color;
uniform float Width;
uniform float PixelSize;

float Smooth(float width, float v)
{
    return clamp(v / width + 0.5, 0.0, 1.0);
}

void main()
{
    float fromMiddle = abs(gl_TexCoord[0].s - 0.5) * Width;
    float cover = Smooth(PixelSize, 0.5 * (Width - PixelSize) - fromMiddle);
    gl_FragColor = vec4(Color.rgb, Color.a * gl_TexCoord[0].t * cover);
}
