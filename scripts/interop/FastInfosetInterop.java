// Reads each name.finf of a directory with an independent Fast Infoset
// decoder and compares its infoset with name.xml, the same document as the
// library's XML text: elements, attributes, namespace declarations and text,
// compared canonically rather than byte for byte.
import java.io.File;
import java.util.Arrays;

public final class FastInfosetInterop {
    public static void main(String[] args) throws Exception {
        File[] files = new File(args[0]).listFiles((dir, name) -> name.endsWith(".finf"));
        if (files == null || files.length == 0) {
            System.err.println("interop: no Fast Infoset documents in " + args[0]);
            System.exit(1);
        }
        Arrays.sort(files);
        int failures = 0;
        for (File finf : files) {
            String name = finf.getName().substring(0, finf.getName().length() - 5);
            File xml = new File(finf.getParentFile(), name + ".xml");
            try {
                String fromBinary = Infosets.canonical(Infosets.readFastInfoset(finf), true);
                String fromText = Infosets.canonical(Infosets.readText(xml), true);
                if (fromBinary.equals(fromText) || sameValues(fromBinary, fromText)) {
                    System.out.println("ok    " + name);
                } else {
                    ++failures;
                    System.out.println("FAIL  " + name + "\n  Fast Infoset: " + fromBinary + "\n  text:         " + fromText);
                }
            } catch (Exception e) {
                ++failures;
                System.out.println("FAIL  " + name + ": " + e);
            }
        }
        System.out.println((files.length - failures) + " of " + files.length + " documents read alike");
        System.exit(failures == 0 ? 0 : 1);
    }

    // Typed values come back from an encoding algorithm in the decoder's own
    // lexical form: 9.0 for 9, upper or lower case hexadecimal. Two values
    // are alike when they are equal, equal as numbers, or equal but for case.
    private static boolean sameValues(String a, String b) {
        String[] x = a.split("\u0001", -1);
        String[] y = b.split("\u0001", -1);
        if (x.length != y.length)
            return false;
        for (int i = 0; i < x.length; ++i) {
            if (x[i].equals(y[i]) || x[i].equalsIgnoreCase(y[i]))
                continue;
            if (i % 2 == 0 || !sameNumber(x[i], y[i]))
                return false;
        }
        return true;
    }

    private static boolean sameNumber(String a, String b) {
        try {
            return Double.parseDouble(a.trim()) == Double.parseDouble(b.trim());
        } catch (NumberFormatException e) {
            return false;
        }
    }
}
