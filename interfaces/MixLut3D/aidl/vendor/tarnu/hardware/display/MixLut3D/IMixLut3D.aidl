/*
 * Switches the colour plugin's mixing table per display. Frozen at version 1.
 */
package vendor.tarnu.hardware.display.MixLut3D;

@VintfStability
interface IMixLut3D {
    /**
     * Forwards command `cmd` to display `disp` (0 primary, 1 secondary).
     *
     * @return the display's answer to the command; unchanged when no such display runs.
     */
    int set(int disp, int cmd);

    /**
     * Connectivity probe: `in_` carries a NUL-terminated text packed into the ints, `out_`
     * (at least four elements) receives a fixed reply text.
     */
    int sencept(int a, int b, in int[] in_, out int[] out_);
}
