// The reading direction of the interoperability check, with an independent
// Fast Infoset codec on the other side.
//   encode DIR: each name.xml of DIR becomes name.java.finf, written by the
//               Java encoder, and name.java.finf.gz, the same compressed.
//   check DIR:  each name.ours.finf of DIR, written by the library, must
//               decode to the infoset of name.xml: elements, attributes and
//               text, namespace declarations aside (the library chooses its
//               own prefixes).
import java.io.File;
import java.io.FileOutputStream;
import java.io.OutputStream;
import java.util.Arrays;
import java.util.zip.GZIPOutputStream;

import javax.xml.parsers.SAXParser;
import javax.xml.parsers.SAXParserFactory;

import com.sun.xml.fastinfoset.sax.SAXDocumentSerializer;

public final class FastInfosetReadInterop {
    public static void main(String[] args) throws Exception {
        File dir = new File(args[1]);
        if (args[0].equals("encode"))
            encode(dir);
        else
            System.exit(check(dir) ? 0 : 1);
    }

    private static File[] withSuffix(File dir, String suffix) {
        File[] files = dir.listFiles((d, name) -> name.endsWith(suffix) && !name.contains(".java.")
                                                  && !name.contains(".ours."));
        if (files == null)
            files = new File[0];
        Arrays.sort(files);
        return files;
    }

    private static String base(File file, String suffix) {
        return file.getName().substring(0, file.getName().length() - suffix.length());
    }

    // Small size limits for the tables are the encoder's defaults; the
    // repeated-value documents reach them through their many equal values.
    private static void encode(File dir) throws Exception {
        SAXParserFactory factory = SAXParserFactory.newInstance();
        factory.setNamespaceAware(true);
        for (File xml : withSuffix(dir, ".xml")) {
            String name = base(xml, ".xml");
            File finf = new File(dir, name + ".java.finf");
            try (OutputStream out = new FileOutputStream(finf)) {
                serialize(factory, xml, out);
            }
            try (OutputStream out = new GZIPOutputStream(new FileOutputStream(new File(dir, name + ".java.finf.gz")))) {
                serialize(factory, xml, out);
            }
            System.out.println("java  encoded " + name + " (" + xml.length() + " bytes of text, " + finf.length()
                               + " of Fast Infoset)");
        }
    }

    private static void serialize(SAXParserFactory factory, File xml, OutputStream out) throws Exception {
        SAXDocumentSerializer serializer = new SAXDocumentSerializer();
        serializer.setOutputStream(out);
        SAXParser parser = factory.newSAXParser();
        parser.setProperty("http://xml.org/sax/properties/lexical-handler", serializer);
        parser.parse(xml, serializer);
    }

    private static boolean check(File dir) throws Exception {
        File[] files = withSuffix(dir, ".xml");
        int failures = 0, checked = 0;
        for (File xml : files) {
            String name = base(xml, ".xml");
            File ours = new File(dir, name + ".ours.finf");
            if (!ours.exists()) {
                ++failures;
                System.out.println("FAIL  " + name + ": the library wrote no " + ours.getName());
                continue;
            }
            ++checked;
            try {
                String fromBinary = Infosets.canonical(Infosets.readFastInfoset(ours), false);
                String fromText = Infosets.canonical(Infosets.readText(xml), false);
                if (fromBinary.equals(fromText)) {
                    System.out.println("ok    java reads the library's " + name);
                } else {
                    ++failures;
                    System.out.println("FAIL  " + name + "\n  Fast Infoset: " + fromBinary + "\n  text:         "
                                       + fromText);
                }
            } catch (Exception e) {
                ++failures;
                System.out.println("FAIL  " + name + ": " + e);
            }
        }
        System.out.println((files.length - failures) + " of " + files.length
                           + " documents written back by the library read alike");
        return failures == 0 && checked > 0;
    }
}
