// The application's own "glyphs" library: libovra's companions must not take the name.
int application_glyph_count() {
    return 3;
}
