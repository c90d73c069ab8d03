// The circle's square spans SquareScale radii on each side of the centre; its texture coordinates run
// from 0 to 1 over it.
uniform float Radius;
uniform float SquareScale;

varying vec2 local;

void main()
{
    local = (gl_MultiTexCoord0.xy * 2.0 - 1.0) * Radius * SquareScale;
    gl_Position = ftransform();
}
