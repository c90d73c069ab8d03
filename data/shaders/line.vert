// A pen's tail: s runs across the strip from 0 to 1, t is what is left of the fade.
void main()
{
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = ftransform();
}
