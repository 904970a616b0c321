import java.io.BufferedReader;
import java.io.InputStreamReader;
import java.lang.reflect.Method;
import java.nio.charset.StandardCharsets;

/**
 * Runs the command line once for each line of standard input, its words separated by single blanks, all in one virtual
 * machine. What a command prints is followed by a line with a zero byte, the command and its exit status.
 */
final class Commands {
    public static void main(String[] arguments) throws Exception {
        Method run = Class.forName("com.kelvo.tarn.cli.Tarn").getDeclaredMethod("run", String[].class);
        run.setAccessible(true);
        BufferedReader in = new BufferedReader(new InputStreamReader(System.in, StandardCharsets.UTF_8));
        for (String line = in.readLine(); line != null; line = in.readLine()) {
            Object status = run.invoke(null, (Object) line.split(" "));
            System.out.println("\0" + line + ": " + status);
        }
    }
}
