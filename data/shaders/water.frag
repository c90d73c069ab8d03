// The water's field lies in the alpha of the bound texture: where it exceeds Cutoff there is water of
// Color, see-through by Color's alpha. The edge is smoothed over one pixel's change of the field, and the
// water is lighter just below its surface.
uniform sampler2D Field;
uniform float Cutoff;
uniform vec4 Color;

// The depth of the lighter rim below the surface, in field units, and how much lighter it is there.
const float RIM_DEPTH = 0.15;
const float RIM_LIGHT = 0.2;

void main()
{
    float f = texture2D(Field, gl_TexCoord[0].st).a;
    float edge = max(fwidth(f), 0.001);
    float cover = clamp((f - Cutoff) / edge + 0.5, 0.0, 1.0);
    float rim = 1.0 - clamp((f - Cutoff) / RIM_DEPTH, 0.0, 1.0);
    vec3 rgb = mix(Color.rgb, vec3(1.0), RIM_LIGHT * rim);
    gl_FragColor = vec4(rgb, Color.a * cover);
}
