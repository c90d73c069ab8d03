// The water surface: one quad over the view, with the corner of the field texture that the view fills.
void main()
{
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = ftransform();
}
