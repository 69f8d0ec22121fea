// The reading direction of the interoperability check, with an independent
// Fast Infoset codec on the other side.
//   encode DIR: each name.xml of DIR becomes name.java.finf, written by the
//               Java encoder, and name.java.finf.gz, the same compressed.
//   check DIR:  each name.ours.finf of DIR, written by the library, must
//               decode to the infoset of name.xml: elements, attributes and
//               text, namespace declarations aside (the library chooses its
//               own prefixes).
import java.io.File;
import java.io.FileInputStream;
import java.io.FileOutputStream;
import java.io.InputStream;
import java.io.OutputStream;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.zip.GZIPOutputStream;

import javax.xml.parsers.DocumentBuilderFactory;
import javax.xml.parsers.SAXParser;
import javax.xml.parsers.SAXParserFactory;

import org.w3c.dom.Attr;
import org.w3c.dom.Document;
import org.w3c.dom.NamedNodeMap;
import org.w3c.dom.Node;

import com.sun.xml.fastinfoset.dom.DOMDocumentParser;
import com.sun.xml.fastinfoset.sax.SAXDocumentSerializer;

public final class FastInfosetReadInterop {
    private static final String XMLNS = "http://www.w3.org/2000/xmlns/";

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
                String fromBinary = canonical(readFastInfoset(ours));
                String fromText = canonical(readText(xml));
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

    private static String canonical(Document document) {
        StringBuilder out = new StringBuilder();
        element(document.getDocumentElement(), out);
        return out.toString();
    }

    // Elements by URI and local name, attributes sorted, the element's text
    // joined and kept when it is not only blanks.
    private static void element(Node node, StringBuilder out) {
        out.append("<{").append(nz(node.getNamespaceURI())).append('}').append(node.getLocalName());
        List<String> items = new ArrayList<>();
        NamedNodeMap attributes = node.getAttributes();
        for (int i = 0; i < attributes.getLength(); ++i) {
            Attr a = (Attr) attributes.item(i);
            if (!XMLNS.equals(a.getNamespaceURI()))
                items.add(" @{" + nz(a.getNamespaceURI()) + "}" + a.getLocalName() + "=[" + a.getValue() + "]");
        }
        Collections.sort(items);
        for (String item : items)
            out.append(item);
        out.append('>');
        StringBuilder text = new StringBuilder();
        StringBuilder children = new StringBuilder();
        for (Node child = node.getFirstChild(); child != null; child = child.getNextSibling()) {
            if (child.getNodeType() == Node.TEXT_NODE || child.getNodeType() == Node.CDATA_SECTION_NODE)
                text.append(child.getNodeValue());
            else if (child.getNodeType() == Node.ELEMENT_NODE)
                element(child, children);
        }
        if (text.toString().trim().length() != 0)
            out.append('[').append(text).append(']');
        out.append(children).append("</>");
    }

    private static String nz(String s) {
        return s == null ? "" : s;
    }
}
