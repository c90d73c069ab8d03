// Solid shapes: the fragment works in the shape's own coordinates, where the outline is known.
varying vec2 local;

void main()
{
    local = gl_Vertex.xy;
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = ftransform();
}
