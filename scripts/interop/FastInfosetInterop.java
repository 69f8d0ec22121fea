// Reads each name.finf of a directory with an independent Fast Infoset
// decoder and compares its infoset with name.xml, the same document as the
// library's XML text: elements, attributes, namespace declarations and text,
// compared canonically rather than byte for byte.
import java.io.File;
import java.io.FileInputStream;
import java.io.InputStream;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;

import javax.xml.parsers.DocumentBuilderFactory;

import org.w3c.dom.Attr;
import org.w3c.dom.Document;
import org.w3c.dom.NamedNodeMap;
import org.w3c.dom.Node;

import com.sun.xml.fastinfoset.dom.DOMDocumentParser;

public final class FastInfosetInterop {
    private static final String XMLNS = "http://www.w3.org/2000/xmlns/";

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
                String fromBinary = canonical(readFastInfoset(finf));
                String fromText = canonical(readText(xml));
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

    private static DocumentBuilderFactory factory() {
        DocumentBuilderFactory factory = DocumentBuilderFactory.newInstance();
        factory.setNamespaceAware(true);
        return factory;
    }

    private static Document readFastInfoset(File file) throws Exception {
        Document document = factory().newDocumentBuilder().newDocument();
        try (InputStream in = new FileInputStream(file)) {
            new DOMDocumentParser().parse(document, in);
        }
        return document;
    }

    private static Document readText(File file) throws Exception {
        return factory().newDocumentBuilder().parse(file);
    }

    // One line per item: elements by URI and local name, their namespace
    // declarations and attributes sorted, text that is not only blanks.
    private static String canonical(Document document) {
        StringBuilder out = new StringBuilder();
        element(document.getDocumentElement(), out);
        return out.toString();
    }

    private static void element(Node node, StringBuilder out) {
        out.append("<{").append(nz(node.getNamespaceURI())).append('}').append(node.getLocalName());
        List<String> items = new ArrayList<>();
        NamedNodeMap attributes = node.getAttributes();
        for (int i = 0; i < attributes.getLength(); ++i) {
            Attr a = (Attr) attributes.item(i);
            if (XMLNS.equals(a.getNamespaceURI()))
                items.add(" xmlns:" + (a.getPrefix() == null ? "" : a.getLocalName()) + "=" + a.getValue());
            else
                items.add(" @{" + nz(a.getNamespaceURI()) + "}" + a.getLocalName() + "=\u0001" + a.getValue() + "\u0001");
        }
        Collections.sort(items);
        for (String item : items)
            out.append(item);
        out.append('>');
        StringBuilder text = new StringBuilder();
        for (Node child = node.getFirstChild(); child != null; child = child.getNextSibling()) {
            if (child.getNodeType() == Node.TEXT_NODE || child.getNodeType() == Node.CDATA_SECTION_NODE) {
                text.append(child.getNodeValue());
                continue;
            }
            flushText(text, out);
            if (child.getNodeType() == Node.ELEMENT_NODE)
                element(child, out);
        }
        flushText(text, out);
        out.append("</>");
    }

    private static void flushText(StringBuilder text, StringBuilder out) {
        if (text.toString().trim().length() != 0)
            out.append("\u0001").append(text).append("\u0001");
        text.setLength(0);
    }

    private static String nz(String s) {
        return s == null ? "" : s;
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
